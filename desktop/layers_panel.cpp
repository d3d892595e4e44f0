// A list of the layers that is filled anew after each change, since drawings have few of them.
#include "desktop/layers_panel.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "cli/script.h"
#include "desktop/icons.h"

namespace quorvel::desktop {

namespace {

enum Column { kEye, kLock, kTitle };
constexpr int kIconColumn = 26;

}  // namespace

LayersPanel::LayersPanel(Desk* desk, QWidget* parent) : QWidget(parent), desk_(desk) {
    setObjectName(QStringLiteral("layers"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(4);
    list_ = new LayerList(this);
    list_->setColumnCount(3);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
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
    add->setIcon(PlusIcon(palette().color(QPalette::WindowText)));
    add->setToolTip(desk->say("New layer", "新規レイヤー"));
    row->addStretch();
    for (const bool up : {true, false}) {
        auto* move = new QToolButton(this);
        move->setObjectName(up ? QStringLiteral("raiseLayer") : QStringLiteral("lowerLayer"));
        move->setAutoRaise(true);
        move->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
        move->setToolTip(up ? desk->say("Raise the layer", "レイヤーを上へ")
                            : desk->say("Lower the layer", "レイヤーを下へ"));
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
    observed_ = desk_->document();
    if (observed_ != nullptr) observed_->addObserver(this);
    refresh();
}

// A step changes many layers at once; one filling after it is enough.
void LayersPanel::layersChanged() {
    if (stale_) return;
    stale_ = true;
    QTimer::singleShot(0, this, [this] { refresh(); });
}

void LayersPanel::refresh() {
    stale_ = false;
    filling_ = true;
    list_->clear();
    if (observed_ != nullptr) {
        for (const host::LayerId id : observed_->layers()) {
            const host::Layer* layer = observed_->layer(id);
            auto* item = new QTreeWidgetItem(list_);
            item->setData(kTitle, Qt::UserRole, id);
            item->setText(kTitle, QString::fromStdString(layer->title));
            item->setFlags((item->flags() | Qt::ItemIsEditable) & ~Qt::ItemIsDropEnabled);
            item->setIcon(kEye, EyeIcon(palette(), layer->visible));
            item->setIcon(kLock, LockIcon(palette(), !layer->editable));
            item->setToolTip(kEye, desk_->say("Show or hide", "表示／非表示"));
            item->setToolTip(kLock, desk_->say("Lock or unlock", "ロック／解除"));
            const bool current = id == observed_->currentLayer();
            QFont font = item->font(kTitle);
            font.setBold(current);
            item->setFont(kTitle, font);
            item->setSelected(current);
        }
    }
    filling_ = false;
}

template <typename Change>
void LayersPanel::change(const std::string& line, Change change) {
    if (desk_->host().edit("Layer", change)) desk_->recorder().step({line});
}

void LayersPanel::clicked(QTreeWidgetItem* item, int column) {
    if (observed_ == nullptr) return;
    const auto id = static_cast<host::LayerId>(item->data(kTitle, Qt::UserRole).toUInt());
    const host::Layer* layer = observed_->layer(id);
    if (layer == nullptr) return;
    const std::string line = "layer " + cli::quotedWord(layer->title) + ' ';
    if (column == kEye) {
        const bool show = !layer->visible;
        change(line + (show ? "show" : "hide"), [&](host::Document& d) { return d.setLayerVisible(id, show); });
    } else if (column == kLock) {
        const bool open = !layer->editable;
        change(line + (open ? "unlock" : "lock"), [&](host::Document& d) { return d.setLayerEditable(id, open); });
    } else {
        desk_->recorder().line(line + "current");
        observed_->setCurrentLayer(id);
    }
    layersChanged();
}

void LayersPanel::renamed(QTreeWidgetItem* item, int column) {
    if (filling_ || column != kTitle || observed_ == nullptr) return;
    const auto id = static_cast<host::LayerId>(item->data(kTitle, Qt::UserRole).toUInt());
    const std::string title = item->text(kTitle).toStdString();
    const host::Layer* layer = observed_->layer(id);
    if (layer != nullptr && layer->title != title && !title.empty())
        change("layer " + cli::quotedWord(layer->title) + " title " + cli::quotedWord(title),
               [&](host::Document& d) { return d.setLayerTitle(id, title); });
    layersChanged();
}

void LayersPanel::addLayer() {
    if (observed_ == nullptr) return;
    const auto taken = [this](const std::string& title) {
        const auto& layers = observed_->layers();
        return std::any_of(layers.begin(), layers.end(),
                           [&](host::LayerId id) { return observed_->layer(id)->title == title; });
    };
    std::string title;
    for (std::size_t number = observed_->layers().size() + 1; title.empty() || taken(title); ++number)
        title = desk_->say("Layer %1", "レイヤー %1").arg(number).toStdString();
    change("layer " + cli::quotedWord(title) + " new", [&](host::Document& d) {
        const host::LayerId made = d.insertLayer(title, 0);
        return made != 0 && d.setCurrentLayer(made);
    });
    layersChanged();
}

// As many single steps in the script as it takes, since a script knows layers by their titles.
void LayersPanel::moveLayer(int from, int to) {
    if (observed_ == nullptr) return;
    const auto count = static_cast<int>(observed_->layers().size());
    if (from == to || from < 0 || from >= count || to < 0 || to >= count) return;
    const host::LayerId id = observed_->layers()[static_cast<std::size_t>(from)];
    const std::string line = "layer " + cli::quotedWord(observed_->layer(id)->title) + (to < from ? " up" : " down");
    for (int place = from; place != to;) {
        place += to < from ? -1 : 1;
        change(line, [&](host::Document& d) { return d.moveLayer(id, static_cast<std::size_t>(place)); });
    }
    layersChanged();
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
