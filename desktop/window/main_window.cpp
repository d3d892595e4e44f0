// Puts the parts together and lets them know of each other.
#include "desktop/window/main_window.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <cmath>

#include "app/script.h"
#include "desktop/window/icons.h"
#include "hostapi/names.h"

namespace quorvel::desktop {

namespace {

constexpr int kTickPeriod = 200;  // milliseconds: five times a second
constexpr char kGeometryKey[] = "window/geometry", kStateKey[] = "window/state";
constexpr int kBeepShown = 1200, kCausesShown = 8000;

}  // namespace

MainWindow::MainWindow(Session* session, const QStringList& imageFolders)
    : session_(session), file_(session, this), editing_(session), truth_(session), imageFolders_(imageFolders) {
    setObjectName(QStringLiteral("mainWindow"));
    setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks);
    session_->user().dialogs().parent = this;
    buildCentre();
    buildDocks();
    buildStatusLine();
    connectAll();
    buildMenus();
    refreshTheme();
    tools_->choose(QStringLiteral("select"));
    resize(1280, 860);
    QSettings settings;
    restoreGeometry(settings.value(QLatin1String(kGeometryKey)).toByteArray());
    restoreState(settings.value(QLatin1String(kStateKey)).toByteArray());
    // The panel stays as it was left, and the plug-in, which has shown it at its start, hears of it.
    if (infoDock_ != nullptr && infoDock_->isHidden() && session_->host().panels().front().shown) menuGo(kInfoMenuItem);
    clock_.start(kTickPeriod);
    refreshTitle();
    refreshMenus();
}

MainWindow::~MainWindow() {
    clock_.stop();
    if (infoDock_ != nullptr) disconnect(infoDock_, nullptr, this, nullptr);
    canvas_->setTool(nullptr);
    leaveDrawing();
    // The panel's page belongs to the backend, which takes it down with the plug-in.
    if (session_->panelPage() != nullptr) session_->panelPage()->setParent(nullptr);
    session_->user().dialogs().parent = nullptr;
}

// --- parts
// ------------------------------------------------------------------------------------------------------------

void MainWindow::buildCentre() {
    auto* centre = new QWidget(this);
    auto* grid = new QGridLayout(centre);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    canvas_ = new Canvas(session_, centre);
    auto* corner = new QWidget(centre);
    corner->setFixedSize(Ruler::kWidth, Ruler::kWidth);
    grid->addWidget(corner, 0, 0);
    grid->addWidget(new Ruler(session_, canvas_, Qt::Horizontal, centre), 0, 1);
    grid->addWidget(new Ruler(session_, canvas_, Qt::Vertical, centre), 1, 0);
    grid->addWidget(canvas_, 1, 1);
    setCentralWidget(centre);
    pluginHand_ = std::make_unique<PluginTool>(session_, canvas_);
    selectHand_ = std::make_unique<SelectTool>(session_, canvas_, &editing_);
    zoomHand_ = std::make_unique<ZoomTool>(canvas_);
}

void MainWindow::buildDocks() {
    auto* bar = new QToolBar(session_->say("Tools", "ツール"), this);
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setMovable(false);
    bar->toggleViewAction()->setEnabled(false);
    tools_ = new ToolPalette(session_, bar);
    bar->addWidget(tools_);
    addToolBar(Qt::LeftToolBarArea, bar);

    if (session_->panelPage() != nullptr) {
        const host::PanelRecord& panel = session_->host().panels().front();
        infoDock_ = new QDockWidget(QString::fromStdString(panel.title), this);
        infoDock_->setObjectName(QStringLiteral("infoDock"));
        auto* page = new QWidget(infoDock_);
        auto* row = new QGridLayout(page);
        row->setContentsMargins(0, 0, 0, 0);
        session_->panelPage()->setFixedSize(static_cast<int>(panel.minimum.width),
                                            static_cast<int>(panel.minimum.height));
        row->addWidget(session_->panelPage(), 0, 0, Qt::AlignTop | Qt::AlignHCenter);
        auto* flyout = new QToolButton(page);
        flyout->setObjectName(QStringLiteral("flyout"));
        flyout->setAutoRaise(true);
        flyout->setIcon(menuIcon(QMainWindow::palette().color(QPalette::WindowText)));
        flyout->setPopupMode(QToolButton::InstantPopup);
        auto* menu = new QMenu(flyout);
        for (const auto& [number, text] : panel.flyoutItems)
            menu->addAction(QString::fromStdString(text), this, [this, item = number] {
                session_->recorder().flyout(item);
                session_->host().chooseFlyout(item);
            });
        flyout->setMenu(menu);
        row->addWidget(flyout, 0, 1, Qt::AlignTop | Qt::AlignRight);
        row->setColumnStretch(0, 1);
        page->setMaximumHeight(session_->panelPage()->height());
        infoDock_->setWidget(page);
        addDockWidget(Qt::RightDockWidgetArea, infoDock_);
        infoDock_->setVisible(panel.shown);
    }
    layersDock_ = new QDockWidget(session_->say("Layers", "レイヤー"), this);
    layersDock_->setObjectName(QStringLiteral("layersDock"));
    layers_ = new LayersPanel(session_, layersDock_);
    layersDock_->setWidget(layers_);
    addDockWidget(Qt::RightDockWidgetArea, layersDock_);
}

void MainWindow::buildStatusLine() {
    hint_ = new QLabel(this);
    point_ = new QLabel(this);
    point_->setObjectName(QStringLiteral("point"));
    zoom_ = new QLabel(this);
    point_->setMinimumWidth(190);
    point_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    zoom_->setMinimumWidth(64);
    zoom_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    unit_ = new QComboBox(this);
    for (const RulerUnit& unit : rulerUnits()) unit_->addItem(QLatin1String(unit.name));
    unit_->setToolTip(session_->say("Unit of the rulers", "定規の単位"));
    unit_->setFocusPolicy(Qt::TabFocus);
    progress_ = new QProgressBar(this);
    progress_->setMaximumWidth(180);
    progress_->hide();
    statusBar()->addWidget(hint_, 1);
    untrue_ = new QLabel(this);
    untrue_->setObjectName(QStringLiteral("untrue"));
    imagesButton_ = new QToolButton(this);
    imagesButton_->setObjectName(QStringLiteral("showImages"));
    imagesButton_->hide();
    for (QWidget* part : std::initializer_list<QWidget*>{imagesButton_, untrue_, progress_, point_, unit_, zoom_})
        statusBar()->addPermanentWidget(part);
}

void MainWindow::connectTools() {
    connect(tools_, &ToolPalette::pluginToolChosen, this, &MainWindow::choosePluginTool);
    connect(tools_, &ToolPalette::selectChosen, this, [this] {
        chooseOwnHand(
            selectHand_.get(),
            session_->say("Click or drag to select, Ctrl-click inside groups; drag to move; the handle turns.",
                          "クリックまたはドラッグで選択、Ctrl+クリックでグループ内を選択、ドラッグで移動、ハンドルで"
                          "回転します。"));
    });
    connect(tools_, &ToolPalette::zoomChosen, this, [this] {
        chooseOwnHand(zoomHand_.get(), session_->say("Click or drag to zoom in; Alt-click zooms out.",
                                                     "クリックまたはドラッグで拡大、Alt+クリックで縮小します。"));
    });
    connect(tools_, &ToolPalette::optionsWanted, this, [this](const QString& title) {
        session_->recorder().line("options " + app::quotedWord(title.toStdString()));
        if (const host::ToolRecord* tool = session_->host().toolByTitle(title.toStdString()))
            session_->host().editOptions(*tool);
    });
}

void MainWindow::connectAll() {
    connectTools();
    connect(canvas_, &Canvas::cursorMoved, this, [this](RealPoint point, QPointF) { showPoint(point); });
    connect(canvas_, &Canvas::cursorLeft, this, [this] { point_->clear(); });
    connect(canvas_, &Canvas::viewChanged, this,
            [this] { zoom_->setText(QStringLiteral("%1 %").arg(std::lround(session_->host().view().zoom * 100))); });
    connect(unit_, &QComboBox::textActivated, this, [this](const QString& unit) {
        session_->recorder().line("ruler " + unit.toStdString());
        session_->host().setRulerUnit(unit.toStdString());
        for (QWidget* part : centralWidget()->findChildren<QWidget*>()) part->update();
    });
    connect(&clock_, &QTimer::timeout, this, &MainWindow::tick);
    connect(session_, &Session::beeped, this, [this] {
        statusBar()->showMessage(session_->say("Not possible here.", "ここではできません。"), kBeepShown);
    });
    connect(session_, &Session::stepMade, this, [this] {
        refreshTitle();
        refreshMenus();
    });
    connect(session_, &Session::pointsUnheld, this,
            [this](const QString& causes) { statusBar()->showMessage(causes, kCausesShown); });
    connect(&truth_, &TruthWatch::counted, this, &MainWindow::showTruth);
    connect(session_, &Session::panelShown, this, [this](bool shown) {
        if (infoDock_ != nullptr) infoDock_->setVisible(shown);
    });
    connect(session_, &Session::progressed, this, &MainWindow::showProgress);
    connect(canvas_, &Canvas::pictureProgressed, this, [this](int current, int maximum) {
        if (!session_->host().busy()) showProgress(current, maximum);
        if (current >= maximum) showLeftOut();
    });
    connect(&images_, &ImageWorker::imagesDecoded, canvas_, &Canvas::imagesDecoded);
    connect(&file_, &DrawingFile::drawingLeaves, this, &MainWindow::leaveDrawing);
    connect(&file_, &DrawingFile::drawingReplaced, this, &MainWindow::replaceDrawing);
    connect(&file_, &DrawingFile::saved, this, [this] { refreshTitle(); });
    connect(&file_, &DrawingFile::warned, this, [this](const QStringList& warnings) {
        statusBar()->showMessage(warnings.join(QStringLiteral(" · ")), 8000);
    });
    // Later: what is being recorded may be in the middle of a gesture.
    const auto tellRecordingEnds = [this](const Error& error) {
        const QString cause = QString::fromStdString(app::sentence(error, session_->language()));
        QMessageBox::warning(this, QStringLiteral("Quorvel"),
                             session_->say("The recording ends here. %1", "記録はここで終わります。%1").arg(cause));
    };
    connect(session_, &Session::recordingFailed, this, tellRecordingEnds, Qt::QueuedConnection);
    if (infoDock_ == nullptr) return;
    // The dock's own cross must tell the plug-in, which keeps its menu item by what the host says of the panel.
    connect(infoDock_, &QDockWidget::visibilityChanged, this, [this] {
        const bool closed = infoDock_->isHidden(), shown = session_->host().panels().front().shown;
        if (closed && shown && isVisible()) menuGo(kInfoMenuItem);
    });
}

// --- tools
// ------------------------------------------------------------------------------------------------------------

void MainWindow::choosePluginTool(const QString& title) {
    const host::ToolRecord* tool = session_->host().toolByTitle(title.toStdString());
    if (tool == nullptr) return;
    canvas_->setTool(pluginHand_.get());
    pluginHand_->take(*tool);
    hint_->setText(title);
}

void MainWindow::chooseOwnHand(CanvasTool* tool, const QString& hint) {
    canvas_->setTool(tool);
    // What the plug-in's tool has left on the view goes with it.
    session_->user().screen().repainted();
    canvas_->update();
    hint_->setText(hint);
}

// --- drawing
// ----------------------------------------------------------------------------------------------------------

void MainWindow::leaveDrawing() {
    canvas_->drawingLeaves();
    layers_->drawingLeaves();
}

void MainWindow::replaceDrawing() {
    editing_.drawingReplaced();
    isLeftOutTold_ = false;
    canvas_->drawingReplaced(file_.name(), imageAccess(), &images_);
    layers_->drawingReplaced();
    unit_->setCurrentText(QString::fromStdString(session_->host().rulerUnit()));
    if (const host::ToolRecord* tool = session_->host().selectedTool();
        tool != nullptr && canvas_->tool() == pluginHand_.get())
        choosePluginTool(QString::fromStdString(tool->title));
    refreshTitle();
    refreshMenus();
}

void MainWindow::refreshTitle() {
    const bool open = session_->document() != nullptr;
    setWindowTitle(open ? file_.name() + QStringLiteral("[*] — Quorvel") : QStringLiteral("Quorvel"));
    setWindowModified(open && file_.unsaved());
}

void MainWindow::undo() {
    session_->recorder().undo();
    session_->host().undo();
    refreshTitle();
    refreshMenus();
}

void MainWindow::redo() {
    session_->recorder().redo();
    session_->host().redo();
    refreshTitle();
    refreshMenus();
}

// While a dialog is shown, or progress, the plug-in's message is still open; the clock waits until it has ended.
void MainWindow::tick() {
    if (QApplication::activeModalWidget() != nullptr || session_->host().busy()) return;
    session_->recorder().tick();
    session_->host().tick();
    truth_.tick();
}

void MainWindow::showTruth() {
    untrue_->setText(truth_.text());
    canvas_->setMarked(markUntrue_->isChecked() ? truth_.untrue() : std::vector<doc::ArtId>());
}

void MainWindow::showPoint(RealPoint point) {
    if (session_->document() == nullptr) return point_->clear();
    const double unit = pointsOfUnit(session_->host().rulerUnit());
    point_->setText(QStringLiteral("X %1   Y %2").arg(point.h / unit, 0, 'f', 2).arg(point.v / unit, 0, 'f', 2));
}

// The window goes on painting; what the user presses meanwhile waits.
void MainWindow::showProgress(int current, int maximum) {
    progress_->setVisible(current < maximum);
    progress_->setRange(0, std::max(1, maximum));
    progress_->setValue(current);
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

// --- images
// -----------------------------------------------------------------------------------------------------------

render::ImageAccess MainWindow::imageAccess() const {
    render::ImageAccess access(file_.folder(), imageFolders_);
    access.isEverywhere = !file_.path().isEmpty() && imagesAllowed_.contains(file_.path());
    return access;
}

void MainWindow::allowImages() {
    imagesAllowed_.append(file_.path());
    canvas_->setImageAccess(imageAccess());
    showLeftOut();
}

void MainWindow::showLeftOut() {
    QStringList names;
    for (const Error& warning : canvas_->warnings()) {
        if (warning.code == ErrorCode::kImageOutside) names << QString::fromStdString(warning.arguments.front());
        if (warning.code != ErrorCode::kPaintingLeftOut || isLeftOutTold_) continue;
        isLeftOutTold_ = true;
        statusBar()->showMessage(session_->say(warning), kCausesShown);
    }
    imagesButton_->setVisible(!names.isEmpty());
    showImages_->setEnabled(!names.isEmpty());
    imagesButton_->setText(
        session_->say("Show %1 images from other folders", "ほかのフォルダーの画像 %1 枚を表示").arg(names.size()));
    imagesButton_->setToolTip(names.join(QLatin1Char('\n')));
}

// --- scheme and end
// -----------------------------------------------------------------------------------------------------

void MainWindow::setColorScheme(ColorScheme scheme) {
    saveColorScheme(scheme);
    applyColorScheme(qobject_cast<QApplication*>(QApplication::instance()), scheme);
    refreshTheme();
}

// The desktop has turned dark, or light again.
bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::ThemeChange && currentColorScheme() == ColorScheme::system)
        applyColorScheme(qobject_cast<QApplication*>(QApplication::instance()), ColorScheme::system);
    return QMainWindow::event(event);
}

void MainWindow::refreshTheme() {
    const QPalette colors = QMainWindow::palette();
    session_->setDark(isDark(colors), colors.color(QPalette::Window), colors.color(QPalette::WindowText));
    tools_->refreshIcons();
    layers_->refresh();
    if (infoDock_ != nullptr)
        infoDock_->findChild<QToolButton*>(QStringLiteral("flyout"))
            ->setIcon(menuIcon(colors.color(QPalette::WindowText)));
    canvas_->setTool(canvas_->tool());
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && tools_ != nullptr && layers_ != nullptr) refreshTheme();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!file_.confirmClose()) return event->ignore();
    QSettings settings;
    settings.setValue(QLatin1String(kGeometryKey), saveGeometry());
    settings.setValue(QLatin1String(kStateKey), saveState());
    clock_.stop();
    event->accept();
}

}  // namespace quorvel::desktop
