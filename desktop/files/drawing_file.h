// The file of the open drawing, and what protects the user's work: a question before unsaved changes are discarded,
// automatic copies, and a question before a file that another program has changed is overwritten.
#pragma once

#include <QDateTime>
#include <QFile>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <optional>

#include "desktop/session.h"

class QWidget;

namespace quorvel::desktop {

// Asks where to save; empty when the user does not want to. A name without an ending gets the suffix ("svg") before it
// is looked for on the disk, and an existing file is not replaced without a question.
QString askSaveName(const Session& session, QWidget* window, const QString& title, const QString& proposed,
                    const QString& suffix);

// Whether a file without write permission is to be replaced.
bool askReplaceReadOnly(const Session& session, QWidget* window, const QString& path);

class DrawingFile : public QObject {
    Q_OBJECT

  public:
    DrawingFile(Session* session, QWidget* window);

    // Empty for a drawing that has no file yet.
    const QString& path() const { return path_; }
    QString name() const;
    QString folder() const;

    bool open(const QString& path);  // asks for unsaved changes first
    void openAsking();
    void newPage();  // asks for its size
    void newPage(float width, float height);
    bool save();
    bool saveAs();
    bool saveTo(const QString& path);
    bool confirmDiscard();  // false when the user wants to stay
    bool confirmClose();    // the same, for good: the copy against a crash goes too
    bool unsaved() const;

    static QStringList recentFiles();
    // A copy that a crash has left behind; asks whether it is to be opened. True when it is.
    bool offerRecovery();
    // Called by the timer; public for those who cannot wait.
    void autosave();

  signals:
    void drawingLeaves();
    void drawingReplaced();
    void saved();  // or otherwise changed its standing with the disk
    void warned(const QStringList& warnings);

  private:
    bool load(const QString& from);
    void opened(const QString& path, const std::optional<QString>& rescuedFrom = {});
    bool changedOutside() const;
    void noteOnDisk();
    void noteRecent() const;
    bool takeCopyName();
    void dropCopy();
    void noteOrigin();
    static QString copiesFolder();
    void tellWarnings(const std::vector<Error>& warnings);
    void tell(Error error, const QString& path);  // names the file without its folders

    Session* session_;
    QWidget* window_;
    QString path_;
    QString origin_;  // of a rescued copy: the file whose drawing it is
    QDateTime onDisk_;
    qint64 sizeOnDisk_ = -1;
    QTimer copyTimer_;
    QString copyPath_;  // empty while there is no automatic copy
    QFile copyLock_;    // held as long as it does
    std::uint64_t copiedChange_ = 0;
    bool rescued_ = false;  // what is open has never been saved where it belongs
};

}  // namespace quorvel::desktop
