// Selecting and changing by the window's own means: what can be taken, what one deed is to undo, and what comes of a
// copy when its original has changed or gone.
#include <QBuffer>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPainter>
#include <random>

#include "interchange/svg/svg.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

// A picture in user space, 80 by 40 with its upper left corner at (300, 100): in document points from (300, 260) to
// (380, 300). The group holds another one alone, from (450, 60) to (490, 100), turned about nothing.
std::string PictureDrawing() {
    QImage red(4, 2, QImage::Format_RGB32);
    red.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    red.save(&buffer, "PNG");
    const std::string href = "data:image/png;base64," + bytes.toBase64().toStdString();
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">\n"
           "<path id=\"line\" d=\"M20 20 H120\" stroke=\"#000\"/>\n"
           "<image id=\"photo\" x=\"300\" y=\"100\" width=\"80\" height=\"40\" href=\"" +
           href +
           "\"/>\n"
           "<g id=\"held\"><image id=\"inner\" x=\"450\" y=\"300\" width=\"40\" height=\"40\" href=\"" +
           href + "\"/></g>\n</svg>\n";
}

void Open(WindowRig& rig, const std::string& text, const QString& name = QStringLiteral("other.svg")) {
    QFile file(rig.home.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(text));
    file.close();
    if (rig.session->document() != nullptr) rig.document().markSaved();
    ASSERT_TRUE(rig.window->file().open(rig.home.filePath(name)));
    QApplication::processEvents();
}

std::size_t PicturesIn(const doc::Document& document) {
    const std::string text = interchange::writeSvg(document, "");
    std::size_t count = 0;
    for (std::size_t at = text.find("<image"); at != std::string::npos; at = text.find("<image", at + 1)) ++count;
    return count;
}

std::vector<doc::ArtId> Ids(WindowRig& rig, std::initializer_list<const char*> names) {
    std::vector<doc::ArtId> ids;
    for (const char* name : names) ids.push_back(rig.document().findByName(name));
    return ids;
}

// --- what the mouse takes
// ---------------------------------------------------------------------------------------------

TEST(Selecting, KeysWhileTheButtonIsHeldTakeTheArtAway) {
    WindowRig rig;
    desktop::Editing& editing = rig.window->editing();
    rig.press("select");
    const doc::ArtId plate = rig.document().findByName("plate");
    const QPoint inside = rig.pixel(150, 150);
    const auto press = [&] {
        rig.moveTo(inside);
        QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, inside);
    };
    const auto release = [&] { QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, inside); };
    editing.select({plate});
    press();
    editing.remove();
    release();
    EXPECT_TRUE(editing.selection().empty());
    rig.window->undo();
    EXPECT_NE(rig.document().find(plate), nullptr);
    editing.select({plate});
    press();
    rig.document().markSaved();
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    release();
    EXPECT_TRUE(editing.selection().empty());
    editing.select({12345});
    EXPECT_TRUE(editing.selection().empty());
}

TEST(Selecting, PicturesAreTakenWhereTheyAreSeen) {
    WindowRig rig;
    Open(rig, PictureDrawing());
    desktop::Editing& editing = rig.window->editing();
    const doc::ArtId photo = rig.document().findByName("photo"), held = rig.document().findByName("held");
    EXPECT_EQ(editing.objectAt({301, 261}, 0.5), photo);
    EXPECT_EQ(editing.objectAt({379, 299}, 0.5), photo);
    EXPECT_EQ(editing.objectAt({383, 280}, 0.5), 0U);
    EXPECT_EQ(editing.objectAt({470, 80}, 0.5), held);
    EXPECT_EQ(editing.partAt({470, 80}, 0.5), rig.document().findByName("inner"));
    EXPECT_EQ(editing.objectsIn(QRectF(QPointF(299, 259), QPointF(381, 301))), std::vector({photo}));
    EXPECT_TRUE(editing.objectsIn(QRectF(QPointF(299, 259), QPointF(379, 301))).empty());
    EXPECT_EQ(editing.objectsIn(QRectF(QPointF(440, 50), QPointF(500, 110))), std::vector({held}));
    editing.select({photo, held});
    EXPECT_EQ(editing.selectionBox().toRect(), QRect(300, 60, 190, 240));
    EXPECT_EQ(editing.selectionOutline().boundingRect().toRect(), QRect(300, 60, 190, 240));
    // A quarter turn about its centre (340, 280): 40 wide and 80 high.
    editing.select({photo});
    editing.turn(90, {340, 280});
    EXPECT_EQ(editing.objectAt({340, 318}, 0.5), photo);
    EXPECT_EQ(editing.objectAt({305, 280}, 0.5), 0U);
    editing.move({0, -100});
    EXPECT_EQ(editing.selectionBox().toRect(), QRect(320, 140, 40, 80));
    rig.document().markSaved();
}

TEST(Selecting, WhatHasBeenHiddenOrLockedSinceIsLeftAlone) {
    WindowRig rig;
    desktop::Editing& editing = rig.window->editing();
    doc::Document& document = rig.document();
    const doc::ArtId plate = document.findByName("plate"), hole = document.findByName("hole");
    editing.selectAll();
    document.setHidden(plate, true);
    EXPECT_EQ(editing.selection(), std::vector({hole}));
    const RealRect still = document.bounds(plate);
    editing.move({5, 5});
    editing.remove();
    ASSERT_NE(document.find(plate), nullptr);
    EXPECT_EQ(document.bounds(plate).left, still.left);
    EXPECT_EQ(document.find(hole), nullptr);
    document.setHidden(plate, false);
    document.setLayerEditable(document.layers().front(), false);
    editing.remove();
    EXPECT_NE(document.find(plate), nullptr);
    editing.select({});
    EXPECT_FALSE(document.find(plate)->selected);  // also of what can't be taken
    document.setLayerEditable(document.layers().front(), true);
    rig.window->editing().select({plate});
    doc::ArtId group = 0;
    rig.session->host().edit("Group", [&](doc::Document& d) {
        group = d.insertArt(kGroupArt, kPlaceAbove, plate);
        return d.moveArt(plate, kPlaceInsideOnTop, group) && d.insertArt(kPathArt, kPlaceInsideOnTop, group) != 0;
    });
    EXPECT_EQ(editing.selection(), std::vector({plate}));
    document.setLocked(plate, true);
    EXPECT_TRUE(editing.selection().empty());
    document.markSaved();
}

// --- what one deed is
// -------------------------------------------------------------------------------------------------

TEST(Steps, ADragIsOneStepWithWhatFollowsIt) {
    for (const bool english : {true, false}) {
        WindowRig rig({english ? "en" : "ja", false, false});
        rig.window->tools()->choose(QString::fromUtf8(english ? "Straight Dimension Tool" : "平行寸法線ツール"));
        if (english) rig.dimensionEdge();
        const std::string before = rig.dump();
        const std::string* former = rig.document().undoName();
        EXPECT_EQ(former != nullptr, english);
        rig.press("select");
        rig.drag(rig.pixel(150, 150), rig.pixel(190, 180));
        const std::string after = rig.dump();
        ASSERT_NE(rig.document().undoName(), nullptr);
        EXPECT_EQ(*rig.document().undoName(), english ? "Undo Move" : "移動の取り消し");
        rig.window->undo();
        rig.window->editing().select({});
        EXPECT_EQ(rig.dump(), before);
        EXPECT_EQ(*rig.document().redoName(), english ? "Redo Move" : "移動のやり直し");
        rig.window->redo();
        rig.window->editing().select(Ids(rig, {"plate"}));
        EXPECT_EQ(rig.dump(), after);
        rig.window->editing().cut();
        EXPECT_EQ(*rig.document().undoName(), english ? "Undo Cut" : "カットの取り消し");
        rig.document().markSaved();
    }
}

TEST(Steps, ADeedThatChangesNothingIsNone) {
    WindowRig rig;
    rig.press("select");
    rig.window->editing().select(Ids(rig, {"plate"}));
    rig.window->editing().move({0, 0});
    rig.window->editing().turn(0, {200, 150});
    EXPECT_EQ(rig.document().undoName(), nullptr);
    EXPECT_FALSE(rig.document().modified());
}

// One of many changes, to art that insertions before it have made. arts may hold art that is gone again.
void changeAtRandom(doc::Document& document, std::vector<doc::ArtId>* arts, std::mt19937* random) {
    const auto pick = [&](std::size_t count) { return std::size_t((*random)() % count); };
    const doc::ArtId art = arts->empty() ? 0 : (*arts)[pick(arts->size())];
    const doc::ArtId other = arts->empty() ? 0 : (*arts)[pick(arts->size())];
    const float by = static_cast<float>(pick(100));
    switch (pick(8)) {
        case 0:
        case 1: {
            const doc::ArtId made = document.insertArt(pick(2) ? kPathArt : kGroupArt, kPlaceAboveAll, 0);
            const PathSegment segment{{by, by}, {by, by}, {by, by}, 1};
            document.setSegments(made, 0, {&segment, 1});
            return arts->push_back(made);
        }
        case 2:
            return void(document.removeArt(art));
        case 3:
            return void(document.transform(art, {1, 0, 0, 1, by, 1}, 1));
        case 4:
            return void(document.setTag(art, "t", std::to_string(by)));
        case 5:
            return void(document.moveArt(art, kPlaceInsideOnTop, other));
        case 6:
            return void(document.setLayerTitle(document.layers().front(), std::to_string(by)));
        default:
            return void(document.setName(art, "id" + std::to_string(by)));
    }
}

// Random changes in two steps, joined: what undo and redo give is what stood before the first and behind the second.
TEST(Steps, JoinedStepsAreUndoneAndRedoneAsOne) {
    std::mt19937 random(5);
    doc::Document document(600, 400);
    std::vector<doc::ArtId> arts;
    const auto dumped = [&] { return app::dumpDocument(document, "pt"); };
    const auto pick = [&](std::size_t count) { return std::size_t(random() % count); };
    document.begin();
    document.insertLayer("L", 0);
    document.commit("Undo L", "Redo L");
    EXPECT_FALSE(document.joinLastSteps());
    int joined = 0;
    for (int round = 0; round < 300; ++round) {
        const std::string before = dumped();
        std::size_t steps = 0;
        for (const char* name : {"first", "second", "third"}) {
            document.begin();
            for (std::size_t i = pick(6); i > 0; --i) changeAtRandom(document, &arts, &random);
            steps += document.commit(name, name) ? 1 : 0;
        }
        const std::string after = dumped();
        if (steps == 0) continue;
        for (std::size_t i = 1; i < steps; ++i) ASSERT_TRUE(document.joinLastSteps());
        joined += steps > 1 ? 1 : 0;
        for (int again = 0; again < 2; ++again) {
            ASSERT_TRUE(document.undo());
            ASSERT_EQ(dumped(), before) << round;
            ASSERT_TRUE(document.redo());
            ASSERT_EQ(dumped(), after) << round;
        }
        if (pick(3) == 0) {
            ASSERT_TRUE(document.undo());
        }
    }
    EXPECT_GT(joined, 200);
}

// --- copies
// -----------------------------------------------------------------------------------------------------------

TEST(Pasting, PicturesComeBackAndAreWritten) {
    WindowRig rig;
    Open(rig, PictureDrawing());
    desktop::Editing& editing = rig.window->editing();
    editing.selectAll();
    ASSERT_EQ(editing.selection().size(), 3U);
    editing.cut();
    EXPECT_EQ(PicturesIn(rig.document()), 0U);
    editing.paste();
    EXPECT_EQ(editing.selection(), Ids(rig, {"held", "photo", "line"}));
    EXPECT_EQ(PicturesIn(rig.document()), 2U);
    EXPECT_EQ(editing.objectAt({312 + 40, 248 + 20}, 0.5), rig.document().findByName("photo"));
    const std::string dump = rig.dump();
    ASSERT_TRUE(rig.window->file().save());
    ASSERT_TRUE(rig.window->file().open(rig.home.filePath("other.svg")));
    editing.select(Ids(rig, {"held", "photo", "line"}));
    EXPECT_EQ(rig.dump(), dump);
    EXPECT_NEAR(editing.selectionBox().right(), 502, 1e-3);
    rig.document().markSaved();
}

TEST(Pasting, IntoAnotherDrawingSaysWhatStaysBehind) {
    WindowRig rig;
    Open(rig, PictureDrawing());
    desktop::Editing& editing = rig.window->editing();
    editing.selectAll();
    editing.copy();
    Open(rig, kPlate, "plate2.svg");
    rig.inDialog([&] { editing.paste(); },
                 [](QWidget* dialog) {
                     EXPECT_NE(qobject_cast<QMessageBox*>(dialog), nullptr);
                     QTest::keyClick(dialog, Qt::Key_Return);
                 });
    EXPECT_EQ(editing.selection(), Ids(rig, {"line"}));
    // A shape with a gradient brings the words of its paint along, not the number that they have elsewhere.
    editing.select(Ids(rig, {"plate"}));
    editing.copy();
    Open(rig,
         "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">"
         "<defs><linearGradient id=\"other\"/></defs><path id=\"p\" d=\"M0 0H9V9\" fill=\"url(#other)\"/></svg>",
         "third.svg");
    editing.paste();
    const std::string saved = interchange::writeSvg(rig.document(), "");
    EXPECT_NE(saved.find("url(#steel)"), std::string::npos) << saved;
    rig.document().markSaved();
}

TEST(Pasting, GivesWhatWasCopiedStepByStepAndWhereItMay) {
    WindowRig rig;
    desktop::Editing& editing = rig.window->editing();
    doc::Document& document = rig.document();
    const doc::ArtId plate = document.findByName("plate");
    editing.select({plate});
    editing.copy();
    editing.move({100, 0});
    const auto pastedLeft = [&] {
        editing.paste();
        EXPECT_EQ(editing.selection().size(), 1U);
        return document.bounds(editing.selection().front()).left;
    };
    EXPECT_EQ(pastedLeft(), 112);
    EXPECT_EQ(document.find(editing.selection().front())->below, plate);
    EXPECT_EQ(pastedLeft(), 124);
    EXPECT_EQ(pastedLeft(), 136);
    editing.copy();
    EXPECT_EQ(pastedLeft(), 148);
    // Its own layer is locked, the current one hidden: the layer that is left takes it.
    doc::LayerId open = 0;
    rig.session->host().edit("Layer", [&](doc::Document& d) {
        open = d.insertLayer("Open", d.layers().front());
        const doc::LayerId hidden = d.insertLayer("Hidden", 0);
        return d.setLayerVisible(hidden, false) && d.setCurrentLayer(hidden) &&
               d.setLayerEditable(d.layerOf(plate), false);
    });
    EXPECT_EQ(pastedLeft(), 160);
    EXPECT_EQ(document.layerOf(editing.selection().front()), open);
    document.setLayerEditable(open, false);
    const std::size_t arts = document.artCount();
    rig.inDialog([&] { editing.paste(); }, [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Return); });
    EXPECT_EQ(document.artCount(), arts);
    document.markSaved();
}

// --- many
// -------------------------------------------------------------------------------------------------------------

// Times that only a walk over the whole drawing at each step exceeds, many times over.
TEST(ManyObjects, ArePastedBandedAndDraggedInTime) {
    constexpr int kMany = 60000;
    WindowRig rig;
    std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">\n";
    for (int i = 0; i < kMany; ++i)
        text += "<path d=\"M" + std::to_string(i % 500 + 20) + " " + std::to_string(i / 500 + 20) + "h2v1\"/>\n";
    Open(rig, text + "</svg>\n");
    desktop::Editing& editing = rig.window->editing();
    rig.press("select");
    QElapsedTimer clock;
    const auto seconds = [&] { return static_cast<double>(clock.nsecsElapsed()) / 1e9; };
    rig.canvas().fit();
    rig.canvas().shown();
    clock.start();
    rig.drag(rig.pixel(1, 1), rig.pixel(599, 399));
    EXPECT_EQ(editing.selection().size(), std::size_t{kMany});
    RecordProperty("band", std::to_string(seconds()));
    EXPECT_LT(seconds(), 0.4);
    rig.canvas().shown();
    clock.start();
    // In the middle of a drag, of all and of as many as are drawn.
    QImage picture(rig.canvas().size(), QImage::Format_RGB32);
    QPainter painter(&picture);
    const std::vector<doc::ArtId> all = editing.selection();
    for (const std::size_t count : {all.size(), std::size_t{3000}}) {
        constexpr int kPaints = 100;
        editing.select({all.begin(), all.begin() + std::ptrdiff_t(count)});
        const RealRect first = rig.document().bounds(all.front());
        const QPoint at = rig.pixel(first.left + 1, first.top);
        rig.moveTo(at);
        QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, at);
        clock.start();
        for (int i = 0; i < kPaints; ++i) {
            rig.moveTo(at + QPoint(4 + i, 4), Qt::LeftButton);
            rig.canvas().tool()->paint(painter);
        }
        EXPECT_EQ(editing.selection().size(), count);
        RecordProperty("paint" + std::to_string(count), std::to_string(seconds() / kPaints));
        EXPECT_LT(seconds() / kPaints, 0.016);
        rig.canvas().tool()->cancel();
        QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, at);
    }
    editing.select(all);
    editing.copy();
    clock.start();
    editing.paste();
    RecordProperty("paste", std::to_string(seconds()));
    EXPECT_LT(seconds(), 5);
    EXPECT_EQ(editing.selection().size(), std::size_t{kMany});
    rig.document().markSaved();
}

TEST(ZoomCursor, IsSeenOnTheDarkestAndTheLightestGround) {
    WindowRig rig;
    rig.window->tools()->choose("zoom");
    const QImage shape = rig.canvas().cursor().pixmap().toImage();
    for (const QColor ground : {Qt::black, Qt::white}) {
        QImage seen(shape.size(), QImage::Format_RGB32);
        seen.fill(ground);
        QPainter(&seen).drawImage(0, 0, shape);
        int apart = 0;
        for (int v = 0; v < seen.height(); ++v)
            for (int h = 0; h < seen.width(); ++h)
                apart += std::abs(qGray(seen.pixel(h, v)) - qGray(ground.rgb())) > 100 ? 1 : 0;
        EXPECT_GT(apart, 40);
    }
}

}  // namespace
}  // namespace quorvel::tests
