// A list of the layers, whose rows are made anew only when there are others or in another order: a row must outlive the
// first click of a double click, and the typing of a name.
#include "desktop/window/layers_panel.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>

#include "app/script.h"
#include "desktop/canvas/selection_editing.h"
#include "desktop/window/icons.h"

namespace quorvel::desktop {

namespace {

enum Column { kEye, kLock, kTitle };
constexpr int kIconColumn = 26;

}  // namespace

LayersPanel::LayersPanel(Session* session, QWidget* parent) : QWidget(parent), session_(session) {
    setObjectName(QStringLiteral("layers"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(4);
    list_ = new LayerList(this);
    list_->setColumnCount(3);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setEditTriggers(QAbstractItemView::EditKeyPressed);
    list_->editedColumn = kTitle;
    list_->header()->setStretchLastSection(true);
    list_->header()->setMinimumSectionSize(kIconColumn);
    list_->setColumnWidth(kEye, kIconColumn);
    list_->setColumnWidth(kLock, kIconColumn);
    list_->setDragDropMode(QAbstractItemView::InternalMove);
    list_->setDropIndicatorShown(true);
    list_->dropped = [this](int from, int to) { moveLayer(from, to); };
    column->addWidget(list_);
    auto* row = new QHBoxLayout;
    auto* add = new QToolButton(this);
    add->setObjectName(QStringLiteral("newLayer"));
    add->setAutoRaise(true);
    add->setIcon(plusIcon(palette().color(QPalette::WindowText)));
    add->setToolTip(session->say("New layer", "新規レイヤー"));
    row->addStretch();
    for (const bool up : {true, false}) {
        auto* move = new QToolButton(this);
        move->setObjectName(up ? QStringLiteral("raiseLayer") : QStringLiteral("lowerLayer"));
        move->setAutoRaise(true);
        move->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
        move->setToolTip(up ? session->say("Raise the layer", "レイヤーを上へ")
                            : session->say("Lower the layer", "レイヤーを下へ"));
        row->addWidget(move);
        connect(move, &QToolButton::clicked, this, [this, up] {
            if (observed_ == nullptr) return;
            const auto& layers = observed_->layers();
            const auto place = std::find(layers.begin(), layers.end(), observed_->currentLayer()) - layers.begin();
            moveLayer(static_cast<int>(place), static_cast<int>(place) + (up ? -1 : 1));
        });
    }
    row->addWidget(add);
    column->addLayout(row);
    connect(add, &QToolButton::clicked, this, [this] { addLayer(); });
    connect(list_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item, int at) { clicked(item, at); });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int at) {
        if (at == kTitle) list_->editItem(item, kTitle);
    });
    connect(list_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int at) { renamed(item, at); });
}

LayersPanel::~LayersPanel() { drawingLeaves(); }

void LayersPanel::drawingLeaves() {
    if (observed_ != nullptr) observed_->removeObserver(this);
    observed_ = nullptr;
}

void LayersPanel::drawingReplaced() {
    drawingLeaves();
    observed_ = session_->document();
    if (observed_ != nullptr) observed_->addObserver(this);
    refresh();
}

// A step changes many layers at once; one filling after it is enough.
void LayersPanel::layersChanged() {
    if (stale_) return;
    stale_ = true;
    QTimer::singleShot(0, this, [this] { refresh(); });
}

bool LayersPanel::rowsAreCurrent() const {
    const std::size_t count = observed_ != nullptr ? observed_->layers().size() : 0;
    if (static_cast<std::size_t>(list_->topLevelItemCount()) != count) return false;
    for (std::size_t row = 0; row < count; ++row)
        if (layerOf(*list_->topLevelItem(static_cast<int>(row))) != observed_->layers()[row]) return false;
    return true;
}

doc::LayerId LayersPanel::layerOf(const QTreeWidgetItem& item) {
    return static_cast<doc::LayerId>(item.data(kTitle, Qt::UserRole).toUInt());
}

void LayersPanel::refresh() {
    stale_ = false;
    filling_ = true;
    const bool anew = !rowsAreCurrent();
    if (anew) list_->clear();
    for (int row = 0; observed_ != nullptr && row < static_cast<int>(observed_->layers().size()); ++row) {
        const doc::LayerId id = observed_->layers()[static_cast<std::size_t>(row)];
        if (anew) {
            auto* made = new QTreeWidgetItem(list_);
            made->setData(kTitle, Qt::UserRole, id);
            made->setFlags((made->flags() | Qt::ItemIsEditable) & ~Qt::ItemIsDropEnabled);
            made->setToolTip(kEye, session_->say("Show or hide", "表示／非表示"));
            made->setToolTip(kLock, session_->say("Lock or unlock", "ロック／解除"));
        }
        const doc::Layer* layer = observed_->layer(id);
        QTreeWidgetItem* item = list_->topLevelItem(row);
        item->setText(kTitle, QString::fromStdString(layer->title));
        item->setIcon(kEye, eyeIcon(palette(), layer->visible));
        item->setIcon(kLock, lockIcon(palette(), !layer->editable));
        const bool current = id == observed_->currentLayer();
        QFont font = item->font(kTitle);
        font.setBold(current);
        item->setFont(kTitle, font);
        if (anew && current) list_->setCurrentItem(item, kTitle);
        item->setSelected(current);
    }
    filling_ = false;
}

// --- changes

template <typename Change>
void LayersPanel::change(const char* english, const char* japanese, const std::vector<std::string>& lines,
                         Change change) {
    session_->recorder().plan(lines);
    const bool done = session_->host().edit(stepNameOf(*session_, english, japanese), change);
    session_->recorder().step(done ? lines : std::vector<std::string>());
}

// A script takes the topmost layer of a title. Others of the same title above the one that is meant are
// renamed for the time of the change.
std::vector<std::string> LayersPanel::linesFor(doc::LayerId id, const std::vector<std::string>& actions,
                                               bool oneStep) const {
    const std::string title = observed_->layer(id)->title;
    std::vector<std::string> lines, others;
    for (const doc::LayerId above : observed_->layers()) {
        if (above == id) break;
        if (observed_->layer(above)->title != title) continue;
        const std::string other = freeTitle(QString::fromStdString(title) + QStringLiteral(" %1"), others.size() + 2);
        lines.push_back("layer " + app::quotedWord(title) + " title " + app::quotedWord(other));
        others.push_back(other);
    }
    for (const std::string& action : actions) lines.push_back("layer " + app::quotedWord(title) + ' ' + action);
    for (auto other = others.rbegin(); other != others.rend(); ++other)
        lines.push_back(oneStep ? "layer " + app::quotedWord(*other) + " title " + app::quotedWord(title) : "undo");
    return lines;
}

std::string LayersPanel::freeTitle(const QString& pattern, std::size_t number) const {
    const auto& layers = observed_->layers();
    for (;; ++number) {
        const std::string title = pattern.arg(number).toStdString();
        if (std::none_of(layers.begin(), layers.end(),
                         [&](doc::LayerId id) { return observed_->layer(id)->title == title; }))
            return title;
    }
}

void LayersPanel::clicked(QTreeWidgetItem* item, int column) {
    if (observed_ == nullptr) return;
    const doc::LayerId id = layerOf(*item);
    const doc::Layer* layer = observed_->layer(id);
    if (layer == nullptr) return;
    if (column == kEye) {
        const bool show = !layer->visible;
        change(show ? "Show Layer" : "Hide Layer", show ? "レイヤーの表示" : "レイヤーの非表示",
               linesFor(id, {show ? "show" : "hide"}), [&](doc::Document& d) { return d.setLayerVisible(id, show); });
    } else if (column == kLock) {
        const bool open = !layer->editable;
        change(open ? "Unlock Layer" : "Lock Layer", open ? "レイヤーのロック解除" : "レイヤーのロック",
               linesFor(id, {open ? "unlock" : "lock"}),
               [&](doc::Document& d) { return d.setLayerEditable(id, open); });
    } else if (id != observed_->currentLayer()) {
        for (const std::string& line : linesFor(id, {"current"}, false)) session_->recorder().line(line);
        observed_->setCurrentLayer(id);
    }
    layersChanged();
}

void LayersPanel::renamed(QTreeWidgetItem* item, int column) {
    if (filling_ || column != kTitle || observed_ == nullptr) return;
    const doc::LayerId id = layerOf(*item);
    const std::string title = item->text(kTitle).toStdString();
    const doc::Layer* layer = observed_->layer(id);
    if (layer != nullptr && layer->title != title && !title.empty())
        change("Rename Layer", "レイヤー名の変更", linesFor(id, {"title " + app::quotedWord(title)}),
               [&](doc::Document& d) { return d.setLayerTitle(id, title); });
    layersChanged();
}

void LayersPanel::addLayer() {
    if (observed_ == nullptr) return;
    const std::string title = freeTitle(session_->say("Layer %1", "レイヤー %1"), observed_->layers().size() + 1);
    change("New Layer", "新規レイヤー", {"layer " + app::quotedWord(title) + " new"}, [&](doc::Document& d) {
        const doc::LayerId made = d.insertLayer(title, 0);
        return made != 0 && d.setCurrentLayer(made);
    });
    layersChanged();
}

// One step here, and as many in the script as there are layers to pass.
void LayersPanel::moveLayer(int from, int to) {
    if (observed_ == nullptr) return;
    const auto count = static_cast<int>(observed_->layers().size());
    if (from == to || from < 0 || from >= count || to < 0 || to >= count) return;
    const doc::LayerId id = observed_->layers()[static_cast<std::size_t>(from)];
    const std::vector<std::string> actions(static_cast<std::size_t>(std::abs(to - from)), to < from ? "up" : "down");
    change("Move Layer", "レイヤーの移動", linesFor(id, actions),
           [&](doc::Document& d) { return d.moveLayer(id, static_cast<std::size_t>(to)); });
    layersChanged();
}

// The key edits the name, whichever column was clicked last.
bool LayerList::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    return QTreeWidget::edit(trigger == EditKeyPressed ? index.siblingAtColumn(editedColumn) : index, trigger, event);
}

void LayerList::dropEvent(QDropEvent* event) {
    const QModelIndex moved = currentIndex(), below = indexAt(event->position().toPoint());
    int to = below.isValid() ? below.row() : topLevelItemCount();
    if (below.isValid() && dropIndicatorPosition() == BelowItem) ++to;
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    if (!moved.isValid() || !dropped) return;
    dropped(moved.row(), to > moved.row() ? to - 1 : to);
}

}  // namespace quorvel::desktop
