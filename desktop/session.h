// What the window works on: the host with its plug-in, the backend that shows dialogs, the recorder, and the words
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

#include "app/plugin_session.h"
#include "app/recorder.h"
#include "app/sentences.h"
#include "platform/qt/qt_backend.h"

namespace quorvel::desktop {

class Session : public QObject {
    Q_OBJECT

  public:
    // recordFile: takes what is done as a script; empty: nothing is recorded.
    explicit Session(const app::SessionOptions& options, const std::string& recordFile = {});
    ~Session() override;

    // Loads and starts the plug-in.
    Status start();
    Status shutdown();  // an error when the settings cannot be written

    host::Host& host() { return plugin_->host(); }
    platform::QtBackend& user() { return *user_; }
    app::Recorder& recorder() { return recorder_; }
    const app::SessionOptions& options() const { return options_; }
    doc::Document* document() const { return plugin_->host().document(); }

    // One of the two texts, by the language of the tools.
    QString say(const char* english, const char* japanese) const;
    bool english() const { return english_; }
    QString say(const Error& error) const;
    app::Language language() const { return english_ ? app::Language::english : app::Language::japanese; }
    // The panel and the icons follow.
    void setDark(bool dark, const QColor& background, const QColor& text);
    bool dark() const { return dark_; }
    // Opens the view's window under the name; a resize opens it anew. Sizes in pixels.
    void openView(const QString& name, int width, int height);
    void closeView();

    QWidget* panelPage() const { return panelPage_; }

  signals:
    void viewRepainted();
    void surfaceDrawn();
    void cursorChosen(const QCursor& cursor);
    void beeped();
    void pointsUnheld(const QString& causes);  // a new dimension has points that cannot follow
    void stepMade(const QString& name);
    void panelShown(bool shown);
    void progressed(int current, int maximum);
    void recordingFailed(const Error& error);

  private:
    void connectHost();
    void connectUser();
    void recordSettings();
    void recordPanel();
    void speak();
    std::string viewTitle() const;

    app::SessionOptions options_;
    std::string recordFile_;
    std::unique_ptr<platform::QtBackend> user_;
    std::unique_ptr<app::PluginSession> plugin_;
    app::Recorder recorder_;
    bool english_ = false, dark_ = false;
    QString viewName_;
    QWidget* panelPage_ = nullptr;
    std::unique_ptr<QTranslator> qtWords_;  // of Qt's own dialogs and buttons
};

}  // namespace quorvel::desktop
