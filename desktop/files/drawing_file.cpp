// Opening, saving and the questions round them. Copies lie in the program's state folder, one for each running process,
// each with a lock that the system takes away when the process ends: a copy without its lock is one that a crash has
// left, whatever has got the process's number since, and wherever the program was started from.
#include "desktop/files/drawing_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QMessageBox>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>

#include "app/saving.h"
#include "app/script.h"
#include "files/file_writer.h"
#include "interchange/svg/svg.h"

namespace quorvel::desktop {

namespace {

constexpr int kCopyPeriod = 30000;  // milliseconds
constexpr int kRecentCount = 10;
constexpr int kMostCopies = 100;  // that crashes have left under one process number
constexpr double kPointsPerMillimetre = 72 / 25.4;
constexpr char kFilter[] = "SVG (*.svg *.svgz)";
constexpr char kRecentKey[] = "recentFiles";
constexpr char kOriginEnding[] = ".origin", kLockEnding[] = ".lock";

struct PageSize {
    const char* name;
    double width, height;  // millimetres, upright
};
constexpr PageSize kPageSizes[] = {
    {"A4", 210, 297}, {"A3", 297, 420}, {"A2", 420, 594}, {"A1", 594, 841}, {"A0", 841, 1189}};

// Whether the copy's process is still there.
bool held(const QString& copy) {
    const int lock = ::open(QFile::encodeName(copy + QLatin1String(kLockEnding)).constData(), O_RDWR | O_CLOEXEC);
    if (lock < 0) return false;
    const bool held = ::flock(lock, LOCK_EX | LOCK_NB) != 0;
    ::close(lock);
    return held;
}

// Shown while a file is read, which paints nothing.
struct Waiting {
    Waiting() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Waiting() { QApplication::restoreOverrideCursor(); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
};

}  // namespace

// The dialog's own question would be asked of the name without its ending, and by some desktops not at all.
QString askSaveName(const Session& session, QWidget* window, const QString& title, const QString& proposed,
                    const QString& suffix) {
    QFileDialog dialog(window, title, QFileInfo(proposed).absolutePath(),
                       QStringLiteral("%1 (*.%2)").arg(suffix.toUpper(), suffix));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(QFileInfo(proposed).fileName());
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const QString path = dialog.selectedFiles().front();
        if (!QFileInfo::exists(path)) return path;
        const QString text = session.say("%1 is there already. Replace it?", "%1 は既にあります。置き換えますか？");
        const auto answer =
            QMessageBox::warning(window, QStringLiteral("Quorvel"), text.arg(QFileInfo(path).fileName()),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        if (answer == QMessageBox::Yes) return path;
    }
    return {};
}

bool askReplaceReadOnly(const Session& session, QWidget* window, const QString& path) {
    const QString text =
        session.say("%1 is read-only. Replace it all the same?", "%1 は読み取り専用です。それでも置き換えますか？");
    return QMessageBox::warning(window, QStringLiteral("Quorvel"), text.arg(QFileInfo(path).fileName()),
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

DrawingFile::DrawingFile(Session* session, QWidget* window) : session_(session), window_(window) {
    connect(&copyTimer_, &QTimer::timeout, this, &DrawingFile::autosave);
    copyTimer_.start(kCopyPeriod);
}

QString DrawingFile::name() const {
    if (!path_.isEmpty()) return QFileInfo(path_).fileName();
    if (!origin_.isEmpty()) return session_->say("Copy of %1", "%1 の控え").arg(QFileInfo(origin_).fileName());
    return session_->say("Untitled", "名称未設定");
}

QString DrawingFile::folder() const {
    const QString& beside = path_.isEmpty() ? origin_ : path_;
    return beside.isEmpty() ? QDir::currentPath() : QFileInfo(beside).absolutePath();
}

void DrawingFile::tell(Error error, const QString& path) {
    error.file = QFileInfo(path).fileName().toStdString();
    QMessageBox(QMessageBox::Warning, QStringLiteral("Quorvel"), session_->say(error), QMessageBox::Ok, window_).exec();
}

// --- opening
// ----------------------------------------------------------------------------------------------------------

// Into a new drawing first: a bad file does not cost the one that is open.
bool DrawingFile::load(const QString& from) {
    Result<interchange::SvgDrawing> drawing = [&] {
        const Waiting waiting;
        return interchange::readSvgFile(QFile::encodeName(from).toStdString());
    }();
    if (!drawing) {
        tell(drawing.error(), from);
        return false;
    }
    const Waiting waiting;
    session_->recorder().line("open " + app::quotedWord(QFile::encodeName(from).toStdString()));
    emit drawingLeaves();
    session_->host().setDocument(std::move(drawing->document), drawing->rulerUnit);
    tellWarnings(drawing->warnings);
    return true;
}

void DrawingFile::tellWarnings(const std::vector<Error>& warnings) {
    QStringList sentences;
    for (const std::string& warning : app::warningSentences(warnings, session_->language()))
        sentences.append(QString::fromStdString(warning));
    if (!sentences.isEmpty()) emit warned(sentences);
}

void DrawingFile::opened(const QString& path, const std::optional<QString>& rescuedFrom) {
    dropCopy();
    rescued_ = rescuedFrom.has_value();
    origin_ = rescuedFrom.value_or(QString());
    path_ = path;
    session_->recorder().forgetSteps();
    copiedChange_ = session_->document()->changeCount();
    noteOnDisk();
    noteRecent();
    emit drawingReplaced();
}

bool DrawingFile::open(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!confirmDiscard()) return false;
    if (!load(absolute)) return false;
    opened(absolute);
    return true;
}

void DrawingFile::openAsking() {
    const QString path =
        QFileDialog::getOpenFileName(window_, session_->say("Open", "開く"), folder(), QLatin1String(kFilter));
    if (!path.isEmpty()) open(path);
}

void DrawingFile::noteRecent() const {
    if (path_.isEmpty()) return;
    QStringList recent = recentFiles();
    recent.removeAll(path_);
    recent.prepend(path_);
    QSettings().setValue(QLatin1String(kRecentKey), QStringList(recent.mid(0, kRecentCount)));
}

QStringList DrawingFile::recentFiles() { return QSettings().value(QLatin1String(kRecentKey)).toStringList(); }

void DrawingFile::newPage(float width, float height) {
    session_->recorder().line("new " + app::shortestText(width) + ' ' + app::shortestText(height));
    emit drawingLeaves();
    session_->host().newDocument(width, height);
    session_->recorder().line("ruler mm");
    session_->host().setRulerUnit("mm");
    opened({});
}

void DrawingFile::newPage() {
    if (!confirmDiscard()) return;
    QDialog dialog(window_);
    dialog.setWindowTitle(session_->say("New Drawing", "新規図面"));
    auto* form = new QFormLayout(&dialog);
    auto* sizes = new QComboBox(&dialog);
    for (const PageSize& size : kPageSizes) sizes->addItem(QLatin1String(size.name));
    sizes->addItem(session_->say("Custom", "カスタム"));
    auto* across = new QRadioButton(session_->say("Landscape", "横"), &dialog);
    auto* upright = new QRadioButton(session_->say("Portrait", "縦"), &dialog);
    across->setChecked(true);
    const auto field = [&dialog] {
        auto* box = new QDoubleSpinBox(&dialog);
        box->setRange(1, 10000);
        box->setDecimals(2);
        box->setSuffix(QStringLiteral(" mm"));
        return box;
    };
    QDoubleSpinBox *width = field(), *height = field();
    form->addRow(session_->say("Page :", "用紙："), sizes);
    form->addRow(QString(), across);
    form->addRow(QString(), upright);
    form->addRow(session_->say("Width :", "幅："), width);
    form->addRow(session_->say("Height :", "高さ："), height);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    const auto fill = [=] {
        const int row = sizes->currentIndex();
        const bool custom = row >= static_cast<int>(std::size(kPageSizes));
        width->setEnabled(custom);
        height->setEnabled(custom);
        if (custom) return;
        const PageSize& size = kPageSizes[row];
        width->setValue(across->isChecked() ? size.height : size.width);
        height->setValue(across->isChecked() ? size.width : size.height);
    };
    connect(sizes, &QComboBox::currentIndexChanged, &dialog, fill);
    connect(across, &QRadioButton::toggled, &dialog, fill);
    sizes->setCurrentIndex(1);
    fill();
    if (dialog.exec() != QDialog::Accepted) return;
    newPage(static_cast<float>(width->value() * kPointsPerMillimetre),
            static_cast<float>(height->value() * kPointsPerMillimetre));
}

// --- saving
// -----------------------------------------------------------------------------------------------------------

void DrawingFile::noteOnDisk() {
    const QFileInfo file(path_);
    onDisk_ = path_.isEmpty() ? QDateTime() : file.lastModified();
    sizeOnDisk_ = path_.isEmpty() ? -1 : file.size();
}

bool DrawingFile::changedOutside() const {
    const QFileInfo file(path_);
    return file.exists() && (file.lastModified() != onDisk_ || file.size() != sizeOnDisk_);
}

bool DrawingFile::saveTo(const QString& path) {
    const std::string target = QFile::encodeName(path).toStdString();
    std::vector<Error> warnings;
    const auto write = [&](bool replacesReadOnly) {
        const app::SaveChoices choices{replacesReadOnly, !session_->options().skipsBackups};
        return app::saveDrawing(session_->document(), target, session_->host().rulerUnit(), choices, &warnings);
    };
    Status written = write(false);
    if (!written && written.error().code == ErrorCode::kReadOnlyFile) {
        if (!askReplaceReadOnly(*session_, window_, path)) return false;
        written = write(true);
    }
    if (!written) {
        tell(written.error(), path);
        return false;
    }
    session_->recorder().line("save " + app::quotedWord(target));
    dropCopy();
    rescued_ = false;
    origin_.clear();
    path_ = path;
    noteOnDisk();
    noteRecent();
    emit saved();
    tellWarnings(warnings);
    return true;
}

bool DrawingFile::save() {
    if (session_->document() == nullptr) return false;
    if (path_.isEmpty()) return saveAs();
    if (changedOutside()) {
        const QString text = session_->say("Another program has changed %1 since it was opened. Overwrite it?",
                                           "%1 は開いた後にほかのプログラムで変更されています。上書きしますか？");
        const auto answer = QMessageBox::warning(window_, QStringLiteral("Quorvel"), text.arg(name()),
                                                 QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Save) return false;
    }
    return saveTo(path_);
}

bool DrawingFile::saveAs() {
    if (session_->document() == nullptr) return false;
    const QString proposed = !path_.isEmpty()     ? path_
                             : !origin_.isEmpty() ? origin_
                                                  : folder() + QStringLiteral("/Untitled.svg");
    const QString path =
        askSaveName(*session_, window_, session_->say("Save As", "別名で保存"), proposed, QStringLiteral("svg"));
    return !path.isEmpty() && saveTo(path);
}

bool DrawingFile::unsaved() const {
    return session_->document() != nullptr && (rescued_ || session_->document()->modified());
}

bool DrawingFile::confirmDiscard() {
    if (!unsaved()) return true;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Quorvel"),
                    session_->say("Save the changes to %1?", "%1 への変更を保存しますか？").arg(name()),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, window_);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    if (answer == QMessageBox::Save) return save();
    return answer == QMessageBox::Discard;
}

bool DrawingFile::confirmClose() {
    if (!confirmDiscard()) return false;
    dropCopy();
    return true;
}

// --- copies against a crash
// -------------------------------------------------------------------------------------------

QString DrawingFile::copiesFolder() {
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/rescue");
    QDir().mkpath(folder);
    return folder;
}

// Chooses a name that no copy left by a crash has, and locks it for this process.
bool DrawingFile::takeCopyName() {
    if (!copyPath_.isEmpty()) return true;
    const QString folder = copiesFolder();
    const QString process = QString::number(QCoreApplication::applicationPid());
    for (int again = 1; again <= kMostCopies; ++again) {
        const QString path = folder + QLatin1Char('/') + process +
                             (again == 1 ? QString() : QLatin1Char('-') + QString::number(again)) +
                             QStringLiteral(".svg");
        if (QFile::exists(path)) continue;
        copyLock_.setFileName(path + QLatin1String(kLockEnding));
        if (copyLock_.open(QIODevice::ReadWrite) && ::flock(copyLock_.handle(), LOCK_EX | LOCK_NB) == 0) {
            copyPath_ = path;
            return true;
        }
        copyLock_.close();
    }
    return false;
}

void DrawingFile::autosave() {
    const doc::Document* document = session_->document();
    if (document == nullptr || !document->modified() || document->inTransaction()) return;
    if (document->changeCount() == copiedChange_ || !takeCopyName()) return;
    if (!interchange::saveSvgFile(*document, QFile::encodeName(copyPath_).toStdString(), session_->host().rulerUnit()))
        return;
    copiedChange_ = document->changeCount();
    noteOrigin();
}

void DrawingFile::noteOrigin() {
    const std::string path = QFile::encodeName(copyPath_ + QLatin1String(kOriginEnding)).toStdString();
    // A copy without it is offered as one of an unsaved drawing.
    static_cast<void>(files::writeFile(path, (path_.isEmpty() ? origin_ : path_).toStdString()));
}

void DrawingFile::dropCopy() {
    if (copyPath_.isEmpty()) return;
    QFile::remove(copyPath_);
    QFile::remove(copyPath_ + QLatin1String(kOriginEnding));
    copyLock_.remove();
    copyPath_.clear();
}

bool DrawingFile::offerRecovery() {
    const QDir folder(copiesFolder());
    for (const QString& file : folder.entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Time)) {
        const QString copy = folder.absoluteFilePath(file);
        if (held(copy)) continue;
        QFile origin(copy + QLatin1String(kOriginEnding));
        const QString path = origin.open(QIODevice::ReadOnly) ? QString::fromUtf8(origin.readAll()) : QString();
        const QString shown =
            path.isEmpty() ? session_->say("an unsaved drawing", "未保存の図面") : QFileInfo(path).fileName();
        const QString text = session_->say("Quorvel did not end properly. Open the copy of %1 that was put aside?",
                                           "Quorvel が正しく終了しませんでした。%1 の控えを開きますか？");
        const auto answer = QMessageBox::question(window_, QStringLiteral("Quorvel"), text.arg(shown),
                                                  QMessageBox::Open | QMessageBox::Discard | QMessageBox::Cancel);
        if (answer == QMessageBox::Discard) {
            origin.remove();
            QFile::remove(copy);
            QFile::remove(copy + QLatin1String(kLockEnding));
            continue;
        }
        if (answer != QMessageBox::Open || !confirmDiscard() || !load(copy)) continue;  // offered again next time
        opened({}, path);
        origin.remove();
        QFile::remove(copy + QLatin1String(kLockEnding));
        if (takeCopyName()) {
            QFile::rename(copy, copyPath_);
            noteOrigin();
        }
        return true;
    }
    return false;
}

}  // namespace quorvel::desktop
