// Sets host, plug-in and backend up in the order in which each needs the other, and takes them down the other way
// round.
#include "desktop/session.h"

#include <QCoreApplication>
#include <QCursor>
#include <QLibraryInfo>
#include <cmath>
#include <regex>
#include <sstream>

#include "app/dimension_list.h"
#include "app/profile.h"
#include "app/script.h"
#include "hostapi/names.h"
#include "platform/file.h"
#include "platform/system.h"
#include "platform/text.h"

namespace quorvel::desktop {

namespace {

constexpr char kFirstUnit[] = "mm";  // of the rulers before a drawing brings its own, as of a new page

}  // namespace

Session::Session(const app::SessionOptions& options, const std::string& recordFile)
    : options_(options), recordFile_(recordFile) {
    user_ = std::make_unique<platform::QtBackend>(options.profile);
    platform::installBackend(user_.get());
    plugin_ = std::make_unique<app::PluginSession>(options);
    connectHost();
    connectUser();
}

Session::~Session() {
    static_cast<void>(shutdown());  // its owner has been told, or has left by an exception
    plugin_.reset();
    platform::installBackend(nullptr);
}

void Session::connectHost() {
    host::HostCallbacks& calls = host().callbacks;
    calls.errorAlert = [this](const std::string& text) {
        recorder_.alertShown(text);
        user_->dialogs().showAlert(text);
    };
    calls.pluginFailed = [this](const Error& error) {
        const std::string text = app::sentence(error, language());
        recorder_.alertShown(text);
        user_->dialogs().showAlert(text);
    };
    calls.yesNoAlert = [this](const std::string& text) { return user_->dialogs().askQuestion(text); };
    calls.progress = [this](int current, int maximum) { emit progressed(current, maximum); };
    calls.createPanelWindow = [this](const host::PanelRecord&) {
        void* window = user_->dialogs().createPanelWindow();
        panelPage_ = platform::QtDialogs::panelWidget(window);
        return window;
    };
    calls.destroyPanelWindow = [this](void* window) {
        user_->dialogs().destroyPanelWindow(window);
        panelPage_ = nullptr;
    };
    calls.panelShown = [this](const host::PanelRecord& panel) { emit panelShown(panel.shown); };
    calls.viewRepainted = [this] {
        user_->screen().setTitle(viewTitle());
        user_->screen().repainted();
        emit viewRepainted();
    };
    calls.rangeRefused = [] { platform::MessageBeep(0); };
    calls.pointsUnheld = [this](const std::vector<DimensionEnd>& ends) {
        QStringList causes;
        for (const DimensionEnd& end : ends) causes << say(app::unheldPoint(end));
        emit pointsUnheld(causes.join(QStringLiteral(" · ")));
    };
    calls.stepMade = [this](const std::string& name) {
        recorder_.stepMade();
        emit stepMade(QString::fromStdString(name));
    };
}

void Session::connectUser() {
    user_->screen().surfaceEnded = [this] { emit surfaceDrawn(); };
    user_->services().cursorChosen = [this](std::int32_t, const QCursor& cursor) { emit cursorChosen(cursor); };
    user_->services().beeped = [this] { emit beeped(); };
    platform::DialogEvents& events = user_->dialogs().events;
    events.dialogOpened = [this] { recorder_.dialogOpened(); };
    events.dialogAnswered = [this](const platform::DialogReply& reply) { recorder_.dialogAnswered(reply); };
    events.boxAnswered = [this](bool accepted, bool) { recorder_.boxAnswered(accepted); };
    events.fileChosen = [this](const std::optional<std::string>& path) { recorder_.fileChosen(path); };
    events.panelUsed = [this](const platform::DialogStep& step) {
        recorder_.panelUsed(step, step.control != kRecalculateButton);
    };
}

Status Session::start() {
    if (const Status prepared = plugin_->prepare(); !prepared) return prepared;
    if (!recordFile_.empty()) {
        if (const Status opened = recorder_.open(recordFile_, options_.seed); !opened) return opened;
        recorder_.writeFailed = [this](const Error& failure) { emit recordingFailed(failure); };
        recordSettings();
    }
    host().setRulerUnit(kFirstUnit);
    Status started = plugin_->start();
    if (!plugin_->started()) return started;
    english_ = host().toolByTitle(kObliqueToolTitle.english) != nullptr;
    speak();
    recordPanel();
    return started;
}

Status Session::shutdown() { return plugin_->shutdown(); }

// The current settings are recorded too: another machine has others.
void Session::recordSettings() {
    std::string bytes;
    if (!platform::ReadWholeFile(app::settingsFileBelow(user_->files().documentsFolder()), &bytes)) return;
    static const std::regex kLine("^\\s*([A-Za-z_0-9]+)\\s*=\\s*(\"([^\"]*)\"|\\S*)\\s*$");
    std::istringstream text(platform::ToUtf8(bytes, platform::kCodePageJapanese));
    for (std::string line; std::getline(text, line);) {
        std::smatch found;
        if (!std::regex_match(line, found, kLine)) continue;
        const bool quoted = found[3].matched;
        recorder_.line("set " + found[1].str() + ' ' + app::quotedWord(quoted ? found[3].str() : found[2].str()));
    }
}

// The command line has another unit at its start, and a step that is said in it is a little off.
void Session::recordPanel() {
    constexpr std::int32_t kGridSteps[] = {20, 22, 24};
    const platform::ControlForm* panel = user_->dialogs().panelForm();
    if (!recorder_.on() || panel == nullptr) return;
    for (const std::int32_t step : kGridSteps)
        recorder_.line("panel text " + std::to_string(step) + ' ' + app::quotedWord(panel->text(step)));
}

// Qt's own buttons and dialogs speak the language of the tools, where its translations are installed.
void Session::speak() {
    if (english_) return;
    qtWords_ = std::make_unique<QTranslator>();
    if (qtWords_->load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qtWords_.get());
}

QString Session::say(const char* english, const char* japanese) const {
    return QString::fromUtf8(english_ ? english : japanese);
}

QString Session::say(const Error& error) const { return QString::fromStdString(app::sentence(error, language())); }

void Session::setDark(bool dark, const QColor& background, const QColor& text) {
    dark_ = dark;
    host::Theme theme;
    const auto put = [](const QColor& color, float(&to)[4]) {
        to[0] = 1;
        to[1] = color.redF();
        to[2] = color.greenF();
        to[3] = color.blueF();
    };
    put(background, theme.background);
    put(text, theme.text);
    theme.value = dark ? 1 : 0;
    host().setTheme(theme);
}

std::string Session::viewTitle() const {
    return viewName_.toStdString() + " @ " + std::to_string(std::lround(plugin_->host().view().zoom * 100)) + "%";
}

void Session::openView(const QString& name, int width, int height) {
    viewName_ = name;
    host::View& view = host().view();
    view.width = width;
    view.height = height;
    user_->screen().openView(viewTitle(), width, height);
}

void Session::closeView() { user_->screen().closeView(); }

}  // namespace quorvel::desktop
