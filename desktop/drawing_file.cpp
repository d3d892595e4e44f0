// Opening, saving and the questions round them. Copies lie in the program's state folder, one for each running process,
// named by its number, so that a copy without its process is one that a crash has left.
#include "desktop/drawing_file.h"

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

#include "cli/script.h"
#include "host/svg.h"

namespace quorvel::desktop {

namespace {

constexpr int kCopyPeriod = 30000;  // milliseconds
constexpr int kRecentCount = 10;
constexpr double kPointsPerMillimetre = 72 / 25.4;
constexpr char kFilter[] = "SVG (*.svg)";
constexpr char kRecentKey[] = "recentFiles";
constexpr char kOriginEnding[] = ".origin";

struct PageSize {
    const char* name;
    double width, height;  // millimetres, upright
};
constexpr PageSize kPageSizes[] = {
    {"A4", 210, 297}, {"A3", 297, 420}, {"A2", 420, 594}, {"A1", 594, 841}, {"A0", 841, 1189}};

// Whether the process is one of this program's.
bool AtWork(const QString& process) {
    const QString program = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(process));
    return !program.isEmpty() && program.startsWith(QCoreApplication::applicationFilePath());
}

}  // namespace

DrawingFile::DrawingFile(Desk* desk, QWidget* window) : desk_(desk), window_(window) {
    connect(&copyTimer_, &QTimer::timeout, this, &DrawingFile::putCopyAside);
    copyTimer_.start(kCopyPeriod);
}

QString DrawingFile::name() const {
    if (!path_.isEmpty()) return QFileInfo(path_).fileName();
    if (!origin_.isEmpty()) return desk_->say("Copy of %1", "%1 の控え").arg(QFileInfo(origin_).fileName());
    return desk_->say("Untitled", "名称未設定");
}

QString DrawingFile::folder() const {
    const QString& beside = path_.isEmpty() ? origin_ : path_;
    return beside.isEmpty() ? QDir::currentPath() : QFileInfo(beside).absolutePath();
}

void DrawingFile::tell(const QString& text) {
    QMessageBox(QMessageBox::Warning, QStringLiteral("Quorvel"), text, QMessageBox::Ok, window_).exec();
}

// --- opening
// ----------------------------------------------------------------------------------------------------------

// Into a new drawing first: a bad file does not cost the one that is open.
bool DrawingFile::load(const QString& from) {
    host::SvgReadResult result = host::readSvgFile(QFile::encodeName(from).toStdString());
    if (result.document == nullptr) {
        tell(QFileInfo(from).fileName() + QStringLiteral(": ") + QString::fromStdString(result.error));
        return false;
    }
    desk_->recorder().line("open " + cli::quotedWord(QFile::encodeName(from).toStdString()));
    emit drawingLeaves();
    desk_->host().setDocument(std::move(result.document), result.rulerUnit);
    QStringList warnings;
    for (const std::string& warning : result.warnings) warnings.append(QString::fromStdString(warning));
    if (!warnings.isEmpty()) emit warned(warnings);
    return true;
}

void DrawingFile::opened(const QString& path, const std::optional<QString>& rescuedFrom) {
    dropCopy();
    rescued_ = rescuedFrom.has_value();
    origin_ = rescuedFrom.value_or(QString());
    path_ = path;
    desk_->recorder().forgetSteps();
    copiedChange_ = desk_->document()->changeCount();
    noteOnDisk();
    noteRecent();
    emit drawingReplaced();
}

bool DrawingFile::open(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!mayLeave()) return false;
    if (!load(absolute)) return false;
    opened(absolute);
    return true;
}

void DrawingFile::openAsking() {
    const QString path =
        QFileDialog::getOpenFileName(window_, desk_->say("Open", "開く"), folder(), QLatin1String(kFilter));
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
    desk_->recorder().line("new " + Shortest(width) + ' ' + Shortest(height));
    emit drawingLeaves();
    desk_->host().newDocument(width, height);
    desk_->recorder().line("ruler mm");
    desk_->host().setRulerUnit("mm");
    opened({});
}

void DrawingFile::newPage() {
    if (!mayLeave()) return;
    QDialog dialog(window_);
    dialog.setWindowTitle(desk_->say("New Drawing", "新規図面"));
    auto* form = new QFormLayout(&dialog);
    auto* sizes = new QComboBox(&dialog);
    for (const PageSize& size : kPageSizes) sizes->addItem(QLatin1String(size.name));
    sizes->addItem(desk_->say("Custom", "カスタム"));
    auto* across = new QRadioButton(desk_->say("Landscape", "横"), &dialog);
    auto* upright = new QRadioButton(desk_->say("Portrait", "縦"), &dialog);
    across->setChecked(true);
    const auto field = [&dialog] {
        auto* box = new QDoubleSpinBox(&dialog);
        box->setRange(1, 10000);
        box->setDecimals(2);
        box->setSuffix(QStringLiteral(" mm"));
        return box;
    };
    QDoubleSpinBox *width = field(), *height = field();
    form->addRow(desk_->say("Page :", "用紙："), sizes);
    form->addRow(QString(), across);
    form->addRow(QString(), upright);
    form->addRow(desk_->say("Width :", "幅："), width);
    form->addRow(desk_->say("Height :", "高さ："), height);
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
    std::string cause;
    if (!host::saveSvgFile(*desk_->document(), target, desk_->host().rulerUnit(), &cause)) {
        tell(QFileInfo(path).fileName() + QStringLiteral(": ") + QString::fromStdString(cause));
        return false;
    }
    desk_->recorder().line("save " + cli::quotedWord(target));
    desk_->document()->markSaved();
    dropCopy();
    rescued_ = false;
    origin_.clear();
    path_ = path;
    noteOnDisk();
    noteRecent();
    emit saved();
    return true;
}

bool DrawingFile::save() {
    if (desk_->document() == nullptr) return false;
    if (path_.isEmpty()) return saveAs();
    if (changedOutside()) {
        const QString text = desk_->say("Another program has changed %1 since it was opened. Overwrite it?",
                                        "%1 は開いた後にほかのプログラムで変更されています。上書きしますか？");
        const auto answer = QMessageBox::warning(window_, QStringLiteral("Quorvel"), text.arg(name()),
                                                 QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Save) return false;
    }
    return saveTo(path_);
}

bool DrawingFile::saveAs() {
    if (desk_->document() == nullptr) return false;
    const QString proposed = !path_.isEmpty()     ? path_
                             : !origin_.isEmpty() ? origin_
                                                  : folder() + QStringLiteral("/Untitled.svg");
    QString path =
        QFileDialog::getSaveFileName(window_, desk_->say("Save As", "別名で保存"), proposed, QLatin1String(kFilter));
    if (path.isEmpty()) return false;
    if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".svg");
    return saveTo(path);
}

bool DrawingFile::unsaved() const {
    return desk_->document() != nullptr && (rescued_ || desk_->document()->modified());
}

bool DrawingFile::mayLeave() {
    if (!unsaved()) return true;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Quorvel"),
                    desk_->say("Save the changes to %1?", "%1 への変更を保存しますか？").arg(name()),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, window_);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    if (answer == QMessageBox::Save) return save();
    return answer == QMessageBox::Discard;
}

bool DrawingFile::mayClose() {
    if (!mayLeave()) return false;
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

QString DrawingFile::copyPath() const {
    return copiesFolder() + QStringLiteral("/%1.svg").arg(QCoreApplication::applicationPid());
}

void DrawingFile::putCopyAside() {
    const host::Document* document = desk_->document();
    if (document == nullptr || !document->modified() || document->inTransaction()) return;
    if (document->changeCount() == copiedChange_) return;
    std::string cause;
    if (!host::saveSvgFile(*document, QFile::encodeName(copyPath()).toStdString(), desk_->host().rulerUnit(), &cause))
        return;
    copiedChange_ = document->changeCount();
    noteOrigin();
}

void DrawingFile::noteOrigin() {
    QFile origin(copyPath() + QLatin1String(kOriginEnding));
    if (origin.open(QIODevice::WriteOnly)) origin.write((path_.isEmpty() ? origin_ : path_).toUtf8());
}

void DrawingFile::dropCopy() {
    QFile::remove(copyPath());
    QFile::remove(copyPath() + QLatin1String(kOriginEnding));
}

bool DrawingFile::offerRescuedCopy() {
    const QDir folder(copiesFolder());
    for (const QString& file : folder.entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Time)) {
        if (AtWork(QFileInfo(file).completeBaseName())) continue;
        const QString copy = folder.absoluteFilePath(file);
        QFile origin(copy + QLatin1String(kOriginEnding));
        const QString path = origin.open(QIODevice::ReadOnly) ? QString::fromUtf8(origin.readAll()) : QString();
        const QString shown =
            path.isEmpty() ? desk_->say("an unsaved drawing", "未保存の図面") : QFileInfo(path).fileName();
        const QString text = desk_->say("Quorvel did not end properly. Open the copy of %1 that was put aside?",
                                        "Quorvel が正しく終了しませんでした。%1 の控えを開きますか？");
        const auto answer = QMessageBox::question(window_, QStringLiteral("Quorvel"), text.arg(shown),
                                                  QMessageBox::Open | QMessageBox::Discard | QMessageBox::Cancel);
        if (answer == QMessageBox::Discard) {
            origin.remove();
            QFile::remove(copy);
            continue;
        }
        if (answer != QMessageBox::Open || !mayLeave() || !load(copy)) continue;  // offered again next time
        opened({}, path);
        origin.remove();
        QFile::rename(copy, copyPath());
        noteOrigin();
        return true;
    }
    return false;
}

}  // namespace quorvel::desktop
