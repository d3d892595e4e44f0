// The window: menus, palette, canvas with rulers, layers, the plug-in's panel and the status line.
#pragma once

#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QTimer>
#include <QToolButton>
#include <memory>

#include "desktop/canvas/canvas.h"
#include "desktop/canvas/canvas_tools.h"
#include "desktop/canvas/selection_editing.h"
#include "desktop/files/drawing_file.h"
#include "desktop/files/image_worker.h"
#include "desktop/session.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/layers_panel.h"
#include "desktop/window/rulers.h"
#include "desktop/window/tool_palette.h"
#include "desktop/window/truth_watch.h"

namespace quorvel::desktop {

class MainWindow : public QMainWindow {
    Q_OBJECT

  public:
    // imageFolders: drawings may show the images in these too, beside those in their own folder.
    explicit MainWindow(Session* session, const QStringList& imageFolders = {});
    ~MainWindow() override;

    Canvas* canvas() const { return canvas_; }
    ToolPalette* tools() const { return tools_; }
    DrawingFile& file() { return file_; }
    Editing& editing() { return editing_; }
    TruthWatch& truth() { return truth_; }
    ImageWorker& images() { return images_; }
    QDockWidget* infoDock() const { return infoDock_; }
    void setColorScheme(ColorScheme scheme);  // and keeps it for the next time
    // One tick of the plug-in's timer, as the clock gives five times a second.
    void tick();
    void undo();
    void redo();
    // A menu item of the plug-in by its name.
    void menuGo(const std::string& name);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void buildCentre();
    void buildDocks();
    void buildStatusLine();
    void connectTools();
    void connectAll();
    void buildMenus();
    void buildFileMenu();
    void buildEditMenu();
    void buildViewMenu();
    void buildOtherMenus();
    QAction* add(QMenu* menu, const QString& text, const QKeySequence& keys, std::function<void()> gesture);
    void addPluginItems(QMenu* menu, const std::string& group);
    void refreshMenus();
    void refreshTitle();
    void refreshTheme();

    void choosePluginTool(const QString& title);
    void chooseOwnHand(CanvasTool* tool, const QString& hint);
    void leaveDrawing();
    void replaceDrawing();
    void exportAs(const char* ending);
    void print();
    void showProgress(int current, int maximum);
    void showPoint(RealPoint point);
    void showTruth();
    render::ImageAccess imageAccess() const;
    void allowImages();
    void showLeftOut();

    Session* session_;
    DrawingFile file_;
    Editing editing_;
    TruthWatch truth_;
    ImageWorker images_;
    QStringList imageFolders_;
    QStringList imagesAllowed_;  // drawings all of whose images may be shown until the window closes
    bool isLeftOutTold_ = false;
    Canvas* canvas_ = nullptr;
    ToolPalette* tools_ = nullptr;
    LayersPanel* layers_ = nullptr;
    QDockWidget *layersDock_ = nullptr, *infoDock_ = nullptr;
    std::unique_ptr<PluginTool> pluginHand_;
    std::unique_ptr<SelectTool> selectHand_;
    std::unique_ptr<ZoomTool> zoomHand_;
    QLabel *hint_ = nullptr, *point_ = nullptr, *zoom_ = nullptr, *untrue_ = nullptr;
    QComboBox* unit_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QTimer clock_;
    QMenu* recent_ = nullptr;
    QAction *markUntrue_ = nullptr, *showImages_ = nullptr;
    QToolButton* imagesButton_ = nullptr;
    QAction *undo_ = nullptr, *redo_ = nullptr;
    std::vector<std::pair<QAction*, std::string>> pluginItems_;
    std::vector<QAction*> needDrawing_;
};

}  // namespace quorvel::desktop
