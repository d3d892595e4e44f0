// A list of the layers that is filled anew after each change, since drawings have few of them.
#include "desktop/layers_panel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

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
    list_ = new QTreeWidget(this);
    list_->setColumnCount(3);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->header()->setStretchLastSection(true);
    list_->header()->setMinimumSectionSize(kIconColumn);
    list_->setColumnWidth(kEye, kIconColumn);
    list_->setColumnWidth(kLock, kIconColumn);
    column->addWidget(list_);
    auto* row = new QHBoxLayout;
    auto* add = new QToolButton(this);
    add->setObjectName(QStringLiteral("newLayer"));
    add->setAutoRaise(true);
    add->setIcon(PlusIcon(palette().color(QPalette::WindowText)));
    add->setToolTip(desk->say("New layer", "新規レイヤー"));
    row->addStretch();
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
    const QColor ink = palette().color(QPalette::Text);
    if (observed_ != nullptr) {
        for (const host::LayerId id : observed_->layers()) {
            const host::Layer* layer = observed_->layer(id);
            auto* item = new QTreeWidgetItem(list_);
            item->setData(kTitle, Qt::UserRole, id);
            item->setText(kTitle, QString::fromStdString(layer->title));
            item->setFlags(item->flags() | Qt::ItemIsEditable);
            item->setIcon(kEye, EyeIcon(ink, layer->visible));
            item->setIcon(kLock, LockIcon(ink, !layer->editable));
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
    const std::string line = "layer " + Quoted(layer->title) + ' ';
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
        change("# layer renamed to " + Quoted(title), [&](host::Document& d) { return d.setLayerTitle(id, title); });
    layersChanged();
}

void LayersPanel::addLayer() {
    if (observed_ == nullptr) return;
    const std::string title = desk_->say("Layer %1", "レイヤー %1").arg(observed_->layers().size() + 1).toStdString();
    change("layer " + Quoted(title) + " new", [&](host::Document& d) {
        const host::LayerId made = d.insertLayer(title, 0);
        return made != 0 && d.setCurrentLayer(made);
    });
    layersChanged();
}

}  // namespace quorvel::desktop
