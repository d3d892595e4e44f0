// The menu bar: the window's own commands, and the items and actions that the plug-in has added.
#include <QActionGroup>
#include <QApplication>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QStatusBar>

#include "app/script.h"
#include "desktop/window/main_window.h"
#include "hostapi/names.h"
#include "render/export.h"

namespace quorvel::desktop {

namespace {

constexpr double kZoomStep = 1.5;
constexpr int kWarningsShown = 8000;           // milliseconds
constexpr double kScreenPointsPerPixel = 1.0;  // a zoom of 100 % shows a point as a pixel

}  // namespace

QAction* MainWindow::add(QMenu* menu, const QString& text, const QKeySequence& keys, std::function<void()> gesture) {
    QAction* action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [gesture = std::move(gesture)] { gesture(); });
    return action;
}

void MainWindow::buildMenus() {
    buildFileMenu();
    buildEditMenu();
    buildViewMenu();
    buildOtherMenus();
}

void MainWindow::buildFileMenu() {
    QMenu* menu = menuBar()->addMenu(session_->say("&File", "ファイル(&F)"));
    add(menu, session_->say("&New...", "新規(&N)..."), QKeySequence::New, [this] { file_.newPage(); });
    add(menu, session_->say("&Open...", "開く(&O)..."), QKeySequence::Open, [this] { file_.openAsking(); });
    recent_ = menu->addMenu(session_->say("Open &Recent", "最近使ったファイル(&R)"));
    connect(recent_, &QMenu::aboutToShow, this, [this] {
        recent_->clear();
        for (const QString& path : DrawingFile::recentFiles())
            recent_->addAction(QFileInfo(path).fileName(), this, [this, path] { file_.open(path); })->setToolTip(path);
    });
    menu->addSeparator();
    needDrawing_.push_back(add(menu, session_->say("&Save", "保存(&S)"), QKeySequence::Save, [this] { file_.save(); }));
    needDrawing_.push_back(
        add(menu, session_->say("Save &As...", "別名で保存(&A)..."), QKeySequence::SaveAs, [this] { file_.saveAs(); }));
    menu->addSeparator();
    needDrawing_.push_back(
        add(menu, session_->say("Export &PDF...", "PDF 書き出し(&P)..."), {}, [this] { exportAs("pdf"); }));
    needDrawing_.push_back(
        add(menu, session_->say("Export P&NG...", "PNG 書き出し(&G)..."), {}, [this] { exportAs("png"); }));
    needDrawing_.push_back(
        add(menu, session_->say("Pr&int...", "印刷(&I)..."), QKeySequence::Print, [this] { print(); }));
    menu->addSeparator();
    add(menu, session_->say("&Quit", "終了(&Q)"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::buildEditMenu() {
    QMenu* menu = menuBar()->addMenu(session_->say("&Edit", "編集(&E)"));
    undo_ = add(menu, {}, QKeySequence::Undo, [this] { undo(); });
    redo_ = add(menu, {}, QKeySequence::Redo, [this] { redo(); });
    undo_->setObjectName(QStringLiteral("undo"));
    redo_->setObjectName(QStringLiteral("redo"));
    menu->addSeparator();
    struct Row {
        const char *english, *japanese;
        QKeySequence keys;
        void (Editing::*gesture)();
    };
    const Row rows[] = {
        {"Cu&t", "カット(&T)", QKeySequence::Cut, &Editing::cut},
        {"&Copy", "コピー(&C)", QKeySequence::Copy, &Editing::copy},
        {"&Paste", "ペースト(&P)", QKeySequence::Paste, &Editing::paste},
        {"&Delete", "消去(&D)", QKeySequence::Delete, &Editing::remove},
        {"Select &All", "すべてを選択(&A)", QKeySequence::SelectAll, &Editing::selectAll},
    };
    for (const Row& row : rows)
        needDrawing_.push_back(
            add(menu, session_->say(row.english, row.japanese), row.keys, [this, gesture = row.gesture] {
                (editing_.*gesture)();
                canvas_->update();
            }));
    menu->addSeparator();
    addPluginItems(menu, kPreferencesMenu);
    connect(menu, &QMenu::aboutToShow, this, &MainWindow::refreshMenus);
}

void MainWindow::buildViewMenu() {
    QMenu* menu = menuBar()->addMenu(session_->say("&View", "表示(&V)"));
    const auto zoom = [this](double factor) { canvas_->zoomAt(QRectF(canvas_->rect()).center(), factor); };
    needDrawing_.push_back(
        add(menu, session_->say("Zoom &In", "ズームイン(&I)"), QKeySequence::ZoomIn, [zoom] { zoom(kZoomStep); }));
    needDrawing_.push_back(add(menu, session_->say("Zoom &Out", "ズームアウト(&O)"), QKeySequence::ZoomOut,
                               [zoom] { zoom(1 / kZoomStep); }));
    needDrawing_.push_back(add(menu, session_->say("&Fit Page", "用紙全体を表示(&F)"),
                               QKeySequence(Qt::CTRL | Qt::Key_0), [this] { canvas_->fit(); }));
    needDrawing_.push_back(add(menu, session_->say("&100 %", "100 %"), QKeySequence(Qt::CTRL | Qt::Key_1),
                               [this] { canvas_->setZoom(kScreenPointsPerPixel); }));
    menu->addSeparator();
    QAction* guides = menu->addAction(session_->say("Show &Guides", "ガイドを表示(&G)"));
    guides->setCheckable(true);
    guides->setChecked(true);
    connect(guides, &QAction::toggled, canvas_, &Canvas::setGuidesShown);
    markUntrue_ = menu->addAction(session_->say("Mark &Untrue Dimensions", "正しくない寸法を表示(&U)"));
    markUntrue_->setObjectName(QStringLiteral("markUntrue"));
    markUntrue_->setCheckable(true);
    connect(markUntrue_, &QAction::toggled, this, &MainWindow::showTruth);
    showImages_ = add(menu, session_->say("Show &Images from Other Folders", "ほかのフォルダーの画像を表示(&I)"), {},
                      [this] { allowImages(); });
    showImages_->setEnabled(false);
    connect(imagesButton_, &QToolButton::clicked, showImages_, &QAction::trigger);
    menu->addSeparator();
    QAction* select = add(menu, session_->say("Select Tool", "選択ツール"), QKeySequence(Qt::Key_V),
                          [this] { tools_->choose(QStringLiteral("select")); });
    select->setShortcutContext(Qt::WindowShortcut);
    add(menu, session_->say("Zoom Tool", "ズームツール"), QKeySequence(Qt::Key_Z),
        [this] { tools_->choose(QStringLiteral("zoom")); });
    menu->addSeparator();
    QMenu* looks = menu->addMenu(session_->say("&Appearance", "外観(&A)"));
    auto* group = new QActionGroup(looks);
    const std::pair<QString, ColorScheme> rows[] = {
        {session_->say("As the Des&ktop", "デスクトップに合わせる(&K)"), ColorScheme::system},
        {session_->say("&Light", "ライト(&L)"), ColorScheme::light},
        {session_->say("&Dark", "ダーク(&D)"), ColorScheme::dark}};
    for (const auto& [text, scheme] : rows) {
        QAction* action = looks->addAction(text);
        action->setCheckable(true);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, wanted = scheme] { setColorScheme(wanted); });
        connect(looks, &QMenu::aboutToShow, this,
                [action, shown = scheme] { action->setChecked(shown == currentColorScheme()); });
    }
}

void MainWindow::buildOtherMenus() {
    QMenu* actions = menuBar()->addMenu(session_->say("&Actions", "アクション(&A)"));
    for (const host::ActionRecord& record : session_->host().actions())
        needDrawing_.push_back(add(actions, QString::fromStdString(record.localizedName),
                                   QKeySequence(Qt::CTRL | Qt::Key_R), [this, event = record.event] {
                                       session_->recorder().line("action " + event);
                                       session_->host().playAction(event);
                                       refreshMenus();
                                   }));
    QMenu* window = menuBar()->addMenu(session_->say("&Window", "ウィンドウ(&W)"));
    addPluginItems(window, kToolPalettesMenu);
    window->addAction(layersDock_->toggleViewAction());
    connect(window, &QMenu::aboutToShow, this, &MainWindow::refreshMenus);

    QMenu* help = menuBar()->addMenu(session_->say("&Help", "ヘルプ(&H)"));
    for (const host::MenuItemRecord& item : session_->host().menuItems()) {
        if (item.group != kAboutMenu) continue;
        // An item that heads a group of its own is the group's submenu.
        QMenu* submenu = help->addMenu(QString::fromStdString(item.text));
        addPluginItems(submenu, item.name);
    }
}

void MainWindow::addPluginItems(QMenu* menu, const std::string& group) {
    for (const host::MenuItemRecord& item : session_->host().menuItems()) {
        if (item.group != group) continue;
        const QKeySequence keys(group == kPreferencesMenu ? Qt::CTRL | Qt::Key_Comma : QKeyCombination());
        QAction* action =
            add(menu, QString::fromStdString(item.text), keys, [this, name = item.name] { menuGo(name); });
        action->setCheckable(item.wantsUpdate);
        action->setObjectName(QString::fromStdString(item.name));
        pluginItems_.emplace_back(action, item.name);
    }
}

void MainWindow::menuGo(const std::string& name) {
    session_->recorder().line("menu " + app::quotedWord(name));
    session_->host().menuGo(name);
    refreshMenus();
}

void MainWindow::refreshMenus() {
    const doc::Document* document = session_->document();
    const auto named = [&](QAction* action, const std::string* name, const char* english, const char* japanese) {
        action->setEnabled(name != nullptr);
        // A step without a name of its own has the host's English word.
        const bool unnamed = name == nullptr || name->empty() || *name == english;
        action->setText(unnamed ? session_->say(english, japanese) : QString::fromStdString(*name));
    };
    named(undo_, document != nullptr ? document->undoName() : nullptr, "Undo", "取り消し");
    named(redo_, document != nullptr ? document->redoName() : nullptr, "Redo", "やり直し");
    for (QAction* action : needDrawing_) action->setEnabled(document != nullptr);
    if (document != nullptr && document->inTransaction()) return;  // asked in the middle of a message
    for (const auto& [action, name] : pluginItems_) {
        if (!action->isCheckable()) continue;
        session_->host().menuUpdate(name);
        for (const host::MenuItemRecord& item : session_->host().menuItems())
            if (item.name == name) action->setChecked(item.checked);
    }
}

// --- paper
// ------------------------------------------------------------------------------------------------------------

void MainWindow::exportAs(const char* ending) {
    if (session_->document() == nullptr) return;
    const QString suffix = QLatin1String(ending);
    const QString proposed =
        file_.folder() + QLatin1Char('/') + QFileInfo(file_.name()).completeBaseName() + QLatin1Char('.') + suffix;
    const QString path = askSaveName(*session_, this, session_->say("Export", "書き出し"), proposed, suffix);
    if (path.isEmpty()) return;
    render::ExportTarget target{path};
    std::vector<Error> warnings;
    WaitingDecoder decoder(&images_);
    const auto exportTo = [&] {
        warnings.clear();
        return render::exportDrawing(*session_->document(), imageAccess(), target, &warnings, &decoder);
    };
    Status exported = exportTo();
    if (!exported && exported.error().code == ErrorCode::kReadOnlyFile) {
        if (!askReplaceReadOnly(*session_, this, path)) return;
        target.replacesReadOnly = true;
        exported = exportTo();
    }
    QStringList sentences;
    for (const std::string& sentence : app::warningSentences(warnings, session_->language()))
        sentences << QString::fromStdString(sentence);
    if (!sentences.isEmpty()) statusBar()->showMessage(sentences.join(QStringLiteral(" · ")), kWarningsShown);
    if (exported) return;
    const Error error = Error(exported.error()).inFile(QFileInfo(path).fileName().toStdString());
    QMessageBox::warning(this, QStringLiteral("Quorvel"), session_->say(error));
}

void MainWindow::print() {
    if (session_->document() == nullptr) return;
    QPrinter printer(QPrinter::HighResolution);
    const doc::Document& drawing = *session_->document();
    const bool across = drawing.width() > drawing.height();
    const QSizeF upright(std::min(drawing.width(), drawing.height()), std::max(drawing.width(), drawing.height()));
    printer.setPageSize(QPageSize(upright, QPageSize::Point));
    printer.setPageOrientation(across ? QPageLayout::Landscape : QPageLayout::Portrait);
    QPrintDialog dialog(&printer, this);
    WaitingDecoder decoder(&images_);
    if (dialog.exec() == QDialog::Accepted)
        render::printDrawing(*session_->document(), imageAccess(), &printer, &decoder);
}

}  // namespace quorvel::desktop
