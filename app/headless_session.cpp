// Sets up host, plug-in and scripted user for a command, and takes them down again.
#include "app/headless_session.h"

#include <filesystem>
#include <iterator>
#include <utility>

#include "app/script.h"
#include "app/sentences.h"
#include "hostapi/names.h"
#include "interchange/svg/svg.h"
#include "platform/file.h"
#include "platform/text.h"

namespace quorvel::app {

namespace {

constexpr const char* kLanguageOptions[] = {"ja", "en", "ko"};  // by LanguageWord

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

// The file's text without the lines that set the key.
std::string withoutKey(std::string_view text, std::string_view key) {
    std::string kept;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? text.size() : end + 1);
        text.remove_prefix(line.size());
        if (trimmed(line.substr(0, line.find('='))) != key) kept += line;
    }
    return kept;
}

}  // namespace

std::string findPluginFile() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path folder = program.parent_path();
    for (const char* place : {"quorvel_plugin.so", "../lib/quorvel/quorvel_plugin.so"})
        if (std::filesystem::exists(folder / place, error)) return (folder / place).string();
    return (folder / "quorvel_plugin.so").string();
}

std::string settingsFileBelow(const std::string& documents) {
    std::filesystem::path path = documents;
    for (const char* folder : kSettingsFolders) path /= folder;
    return (path / kSettingsFile).string();
}

HeadlessSession::HeadlessSession(const SessionOptions& options) : options_(options) {
    user_ = std::make_unique<platform::HeadlessBackend>();
    user_->setDocumentsFolder(options.profile);
    platform::InstallBackend(user_.get());
    host::HostOptions hostOptions;
    hostOptions.seed = options.seed;
    host_ = std::make_unique<host::Host>(hostOptions);
    host_->callbacks.errorAlert = [this](const std::string& text) { user_->showAlert(text); };
    host_->callbacks.yesNoAlert = [this](const std::string& text) { return user_->askQuestion(text); };
    host_->callbacks.createPanelWindow = [this](const host::PanelRecord&) { return user_->createPanelWindow(); };
    host_->callbacks.destroyPanelWindow = [this](void* window) { user_->destroyPanelWindow(window); };
    host_->callbacks.viewRepainted = [this] {
        user_->setViewTitle(viewName_ + " @ " + std::to_string(static_cast<int>(host_->view().zoom * 100)) + "%");
        user_->viewRepainted();
    };
    host_->callbacks.stepMade = [this](const std::string& name) { steps_.push_back(name); };
    for (std::size_t word = 0; word < std::size(kLanguageOptions); ++word)
        if (options.language == kLanguageOptions[word]) writeSetting(kLanguageKey, kLanguageWords[word]);
}

HeadlessSession::~HeadlessSession() {
    shutdown();
    host_.reset();
    platform::InstallBackend(nullptr);
}

std::string HeadlessSession::settingsPath() const {
    const std::filesystem::path path = settingsFileBelow(platform::DocumentsFolder());
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) throw InputError(path.parent_path().string() + ": cannot be created");
    return path.string();
}

void HeadlessSession::writeSetting(std::string_view key, std::string_view valueUtf8) {
    const std::string path = settingsPath();
    std::string text;
    platform::ReadWholeFile(path, &text);  // a first run has none
    text = withoutKey(text, key);
    text += std::string(key) + " = \"" + platform::FromUtf8(valueUtf8, platform::kCodePageJapanese) + "\"\r\n";
    platform::FileRef file = platform::CreateNewFile(path);
    const bool written = file != nullptr && platform::WriteToFile(file, text);
    platform::CloseFile(file);
    if (!written) throw InputError(path + ": cannot be written");
}

void HeadlessSession::start() {
    if (started_) return;
    std::string error;
    const std::string file = options_.pluginFile.empty() ? findPluginFile() : options_.pluginFile;
    if (!host_->loadPlugin(file, &error)) throw InputError(file + ": " + error);
    started_ = true;
    const AIErr result = host_->startup();
    if (result != kNoErr) throw InputError(file + ": start-up failed with " + std::to_string(result));
}

void HeadlessSession::shutdown() {
    if (!started_) return;
    started_ = false;
    host_->shutdown();
}

void HeadlessSession::viewOpened(const std::string& name) {
    viewName_ = name;
    const host::View& view = host_->view();
    user_->openView(name + " @ 100%", view.width, view.height);
}

void HeadlessSession::openDrawing(const std::string& path) {
    Result<interchange::SvgDrawing> drawing = interchange::readSvgFile(path);
    if (!drawing) throw InputError(sentence(drawing.error(), Language::english));
    warnings_ = std::move(drawing->warnings);
    host_->setDocument(std::move(drawing->document), drawing->rulerUnit);
    viewOpened(std::filesystem::path(path).filename().string());
}

void HeadlessSession::newDrawing(float width, float height) {
    host_->newDocument(width, height);
    viewOpened("Untitled");
}

void HeadlessSession::saveDrawing(const std::string& path) {
    std::error_code noFolder;  // a folder that cannot be made shows when the file is written
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, noFolder);
    const Status saved = interchange::saveSvgFile(*host_->document(), path, host_->rulerUnit());
    if (!saved) throw InputError(sentence(saved.error(), Language::english));
    host_->document()->markSaved();
}

std::vector<Error> HeadlessSession::takeWarnings() { return std::exchange(warnings_, {}); }

std::vector<std::string> HeadlessSession::takeSteps() { return std::exchange(steps_, {}); }

}  // namespace quorvel::app
