// What stands behind the window: the host with its plug-in, the backend that shows dialogs, the recorder, and the words
// in the language that the plug-in speaks.
#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QTranslator>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "app/recorder.h"
#include "app/sentences.h"
#include "host/host.h"
#include "platform/qt/qt_backend.h"

namespace quorvel::desktop {

struct SessionOptions {
    std::string profile;   // stands for the documents folder; empty: the user's own
    std::string language;  // "ja", "en", "ko"; empty: as the profile's settings say
    std::optional<std::uint64_t> seed;
    std::string pluginFile;  // empty: beside the program
    std::string recordFile;  // empty: nothing is recorded
};

class Session : public QObject {
    Q_OBJECT

  public:
    explicit Session(const SessionOptions& options);
    ~Session() override;

    // Loads and starts the plug-in. False with the cause when that fails.
    bool start(QString* error);
    void shutdown();

    host::Host& host() { return *host_; }
    platform::QtBackend& user() { return *user_; }
    app::Recorder& recorder() { return recorder_; }
    doc::Document* document() const { return host_->document(); }

    // One of the two texts, by the language of the tools.
    QString say(const char* english, const char* japanese) const;
    bool english() const { return english_; }
    app::Language language() const { return english_ ? app::Language::english : app::Language::japanese; }
    // What a part below the window says in English of a failure.
    QString sayCause(const std::string& english) const;
    // The panel and the icons follow.
    void setDark(bool dark, const QColor& background, const QColor& text);
    bool dark() const { return dark_; }
    // The name under which the view's window stands; resizing opens it anew.
    void openView(const QString& name, int width, int height);
    void closeView();

    QWidget* panelPage() const { return panelPage_; }

  signals:
    void viewRepainted();
    void surfaceDrawn();
    void cursorChosen(const QCursor& cursor);
    void beeped();
    void stepMade(const QString& name);
    void panelShown(bool shown);
    void progressed(int current, int maximum);

  private:
    void connectHost();
    void connectUser();
    void recordSettings();
    void recordPanel();
    void speak();
    std::string viewTitle() const;

    SessionOptions options_;
    std::unique_ptr<platform::QtBackend> user_;
    std::unique_ptr<host::Host> host_;
    app::Recorder recorder_;
    bool started_ = false, english_ = false, dark_ = false;
    QString viewName_;
    QWidget* panelPage_ = nullptr;
    std::unique_ptr<QTranslator> qtWords_;  // of Qt's own dialogs and buttons
};

}  // namespace quorvel::desktop
