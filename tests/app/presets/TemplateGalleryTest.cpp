#include "app/presets/TemplateGallery.h"
#include "app/presets/TagChips.h"
#include "app/presets/TemplateGalleryAccessible.h"
#include "tests/app/Events.h"

#include <QAccessible>
#include <QScrollBar>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

GallerySection section(const QString& key, int count)
{
    GallerySection made{.key = key, .title = key};
    for (int i = 0; i < count; ++i)
        made.tiles.append({.id = QUuid::createUuid(), .name = u"%1 %2"_s.arg(key).arg(i + 1)});
    return made;
}

struct Gallery : TemplateGallery {
    Gallery()
    {
        resize(375, 500);    // as in a panel with three columns
        connect(this, &TemplateGallery::picturesWanted,
                [this](const QList<QUuid>& ids) { wanted = ids; });
        show();
        settle();
    }
    void deliver()
    {
        QImage picture(picturePixels(), QImage::Format_RGB32);
        picture.fill(Qt::gray);
        for (const QUuid& id : QList(wanted))
            setPicture(id, picture);
        settle();
    }
    int heading(const QString& key) const
    {
        for (int i = 0; i < layoutOfParts().parts.size(); ++i) {
            const GalleryPart& part = layoutOfParts().parts[i];
            if (part.kind == GalleryPart::Kind::heading && sections()[part.section].key == key)
                return i;
        }
        return -1;
    }
    QList<QUuid> wanted;
};

}    // namespace

TEST(TemplateGallery, laysSectionsBelowOneAnother)
{
    GallerySection recent = section(u"recent"_s, 7);
    recent.look = GalleryLook::recent;
    GallerySection folded = section(u"folded"_s, 40);
    folded.isFolded = true;
    GallerySection own = section(u"own"_s, 4);
    own.tiles[0].missingFont = u"Bodoni Moda"_s;
    GallerySection none{.key = u"none"_s, .title = u"none"_s, .note = u"Nada aún."_s};
    const GalleryShape shape{.width = 364, .left = 16, .right = 4, .ratio = 0.8};
    const GalleryLayout layout = laidOut({recent, own, folded, none}, shape);
    EXPECT_EQ(layout.columns, 3);
    EXPECT_EQ(layout.tile, QSize(108, 135));
    EXPECT_EQ(layout.smallTile, QSize(62, 78));
    QList<int> perSection{0, 0, 0, 0};
    int bottom = 0;
    QRect before;
    for (const GalleryPart& part : layout.parts) {
        ++perSection[part.section];
        EXPECT_GE(part.whole.left(), 16);
        EXPECT_LE(part.whole.right(), 359);
        const bool isNewRow = part.rect.top() != before.top();
        EXPECT_TRUE(!isNewRow || part.rect.top() >= bottom) << "parts overlap";
        EXPECT_TRUE(isNewRow || part.rect.left() > before.right());
        bottom = std::max(bottom, part.whole.bottom());
        before = part.rect;
    }
    EXPECT_EQ(perSection, (QList<int>{1 + 5, 1 + 4, 1, 1 + 1}));
    EXPECT_LE(bottom, layout.height);

    struct Row {
        const char* what;
        int width;
        double ratio;
        int columns;
    };
    for (const Row& row : {Row{"narrow panel", 308, 0.8, 2}, Row{"compact", 272, 0.8, 2},
                           Row{"stories", 308, 9.0 / 16, 3}, Row{"wide, stories", 364, 9.0 / 16, 4},
                           Row{"wide, landscape", 364, 16.0 / 9, 2}}) {
        const GalleryLayout other =
            laidOut({own}, {.width = row.width, .left = 16, .right = 4, .ratio = row.ratio});
        EXPECT_EQ(other.columns, row.columns) << row.what;
    }
}

TEST(TemplateGallery, asksForWhatIsSeenAndKeepsABoundedNumber)
{
    Gallery gallery;
    gallery.setSections({section(u"own"_s, 2000)});
    settle();
    const auto visible = [&] {
        QList<QUuid> ids;
        for (const int part : gallery.visibleTiles())
            ids.append(gallery.tile(part)->id);
        return ids;
    };
    EXPECT_EQ(gallery.wanted, visible());
    EXPECT_LT(gallery.wanted.size(), 20);
    gallery.deliver();
    gallery.outdatePicture(visible()[1]);
    settle();
    EXPECT_EQ(gallery.wanted, QList{visible()[1]});
    EXPECT_FALSE(gallery.picture(visible()[1]).isNull()) << "the old one stays until then";
    gallery.setPicture(visible()[1], {});    // could not be drawn
    gallery.wanted.clear();
    gallery.verticalScrollBar()->setValue(1);
    settle();
    EXPECT_TRUE(gallery.wanted.isEmpty()) << "is asked for again and again";
    gallery.outdatePictures();
    settle();
    EXPECT_EQ(gallery.wanted, visible());

    while (gallery.verticalScrollBar()->value() < gallery.verticalScrollBar()->maximum()) {
        gallery.deliver();
        gallery.verticalScrollBar()->setValue(gallery.verticalScrollBar()->value() + 450);
        settle();
    }
    EXPECT_LT(gallery.keptPictures(), 700) << "32 MB of 58 kB each";
}

TEST(TemplateGallery, keepsThePlaceOfWhatIsPointedAt)
{
    Gallery gallery;
    const GallerySection own = section(u"own"_s, 60);
    gallery.setSections({own});
    const QUuid id = own.tiles[4].id;
    const QRect before = gallery.partRect(gallery.partOf(id));
    QHoverEvent event(QEvent::HoverMove, before.center(), before.center(), QPointF());
    QApplication::sendEvent(gallery.viewport(), &event);
    GallerySection recent = section(u"recent"_s, 1);
    recent.look = GalleryLook::recent;
    gallery.setSections({recent, own});
    EXPECT_EQ(gallery.partRect(gallery.partOf(id)), before);
}

TEST(TemplateGallery, isUsedByKeys)
{
    Gallery gallery;
    GallerySection team = section(u"team"_s, 5);
    team.canRefresh = team.hasMenu = true;
    gallery.setSections({section(u"own"_s, 4), team});
    QStringList log;
    const auto note = [&](const QString& what) { log.append(what); };
    QObject::connect(&gallery, &TemplateGallery::chosen,
                     [&](QUuid id) { note(u"apply "_s + gallery.tile(gallery.partOf(id))->name); });
    QObject::connect(
        &gallery, &TemplateGallery::foldRequested,
        [&](const QString& key, bool folded) { note((folded ? u"fold "_s : u"unfold "_s) + key); });
    QObject::connect(&gallery, &TemplateGallery::largePreviewToggled,
                     [&](QUuid id) { note(u"large "_s + gallery.tile(gallery.partOf(id))->name); });
    QObject::connect(&gallery, &TemplateGallery::refreshRequested,
                     [&](const QString& key) { note(u"refresh "_s + key); });
    QObject::connect(&gallery, &TemplateGallery::sectionMenuRequested,
                     [&](const QString& key) { note(u"menu "_s + key); });
    gallery.activateWindow();
    gallery.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(gallery.accessibleText(gallery.marked()), u"own 1. own, 1 de 4"_s);
    type(gallery, Qt::Key_Return);
    for (const int key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Space})
        type(gallery, key);    // below the second there is nothing: the nearest is the fourth
    for (const int key : {Qt::Key_Down, Qt::Key_Left})
        type(gallery, key);
    type(gallery, Qt::Key_Right);
    type(gallery, Qt::Key_Return);
    type(gallery, Qt::Key_Right);
    type(gallery, Qt::Key_Return);
    type(gallery, Qt::Key_End);
    type(gallery, Qt::Key_Return);
    EXPECT_EQ(log, (QStringList{u"apply own 1"_s, u"large own 4"_s, u"fold team"_s,
                                u"refresh team"_s, u"menu team"_s, u"apply team 5"_s}));
    type(gallery, Qt::Key_Home);
    EXPECT_EQ(gallery.marked(), gallery.heading(u"own"_s));
    EXPECT_EQ(gallery.verticalScrollBar()->value(), 0);
}

TEST(TemplateGallery, isReadAsAListOfNamedParts)
{
    makeTemplateGalleriesAccessible();
    Gallery gallery;
    GallerySection team = section(u"Del equipo"_s, 3);
    team.state = u"Al día"_s;
    team.canRefresh = true;
    team.tiles[1].name = u"Ladera azul"_s;
    team.tiles[1].isFavourite = true;
    team.tiles[1].missingFont = u"Bodoni Moda"_s;
    const QUuid id = team.tiles[1].id;
    gallery.setAppliedTest([id](QUuid asked) { return asked == id; });
    gallery.setSections({team});
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&gallery);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 5);
    QAccessibleInterface* heading = list->child(0);
    EXPECT_EQ(heading->text(QAccessible::Name), u"Del equipo, 3, Al día"_s);
    EXPECT_TRUE(heading->state().expanded);
    EXPECT_EQ(list->child(1)->text(QAccessible::Name), u"Comprobar ahora: Del equipo"_s);
    QAccessibleInterface* tile = list->child(3);
    EXPECT_EQ(tile->role(), QAccessible::ListItem);
    EXPECT_EQ(tile->text(QAccessible::Name),
              u"Ladera azul, aplicada, favorita, falta Bodoni Moda. Del equipo, 2 de 3"_s);
    EXPECT_TRUE(tile->state().selected);
    EXPECT_FALSE(list->child(2)->state().selected);

    team.isFolded = true;
    gallery.setSections({team});
    EXPECT_TRUE(list->child(0)->state().collapsed);
    EXPECT_FALSE(tile->isValid()) << "a reader may still hold it";
}

TEST(TemplateGallery, answersThePointer)
{
    Gallery gallery;
    gallery.setSections({section(u"own"_s, 3)});
    const GalleryPart& first = gallery.layoutOfParts().parts[1];
    QSignalSpy chosen(&gallery, &TemplateGallery::chosen);
    QSignalSpy starred(&gallery, &TemplateGallery::favouriteToggled);
    QSignalSpy menus(&gallery, &TemplateGallery::menuRequested);
    QSignalSpy folds(&gallery, &TemplateGallery::foldRequested);
    press(*gallery.viewport(), first.rect.center());
    press(*gallery.viewport(), discOf(first).center());
    press(*gallery.viewport(), moreOf(first).center());
    press(*gallery.viewport(), gallery.partRect(0).center());
    EXPECT_EQ(chosen.count(), 1);
    EXPECT_EQ(starred.count(), 1);
    EXPECT_EQ(menus.count(), 1);
    EXPECT_EQ(folds.count(), 1);
}

TEST(TagChips, holdTwoRowsAndPutTheRestIntoAMenu)
{
    TagChips chips;
    chips.resize(344, 62);
    chips.show();
    const QStringList tags{u"oferta"_s,   u"cita"_s,    u"evento"_s, u"minimalista"_s, u"lugar"_s,
                           u"producto"_s, u"consejo"_s, u"moda"_s,   u"viaje"_s,       u"comida"_s};
    chips.setTags(tags);
    EXPECT_EQ(chips.height(), 62);
    const int last = chips.choiceCount() - 1;
    EXPECT_EQ(chips.choiceName(last), u"Más filtros"_s);
    for (int i = 0; i <= last; ++i)
        EXPECT_TRUE(chips.rect().contains(chips.choiceRect(i))) << i;
    QSignalSpy chosen(&chips, &TagChips::chosen);
    type(chips, Qt::Key_Right);
    type(chips, Qt::Key_Right);
    EXPECT_EQ(chosen.takeLast(), (QVariantList{u"oferta"_s, false}));
    EXPECT_EQ(chosen.takeLast(), (QVariantList{QString(), true}));
    // A chosen tag without a chip names the last one.
    chips.setFilter({.tag = u"comida"_s});
    EXPECT_EQ(chips.choiceName(chips.current()), u"Comida"_s);
    for (int i = 0; i < chips.choiceCount(); ++i)
        EXPECT_TRUE(chips.rect().contains(chips.choiceRect(i))) << i;
    chips.setTags({u"oferta"_s});
    chips.setFilter({});
    EXPECT_EQ(chips.choiceCount(), 3);
    EXPECT_EQ(chips.height(), 28);
}
