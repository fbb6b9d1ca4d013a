// Takes pictures of the program as PNG files, without a display.
//
//     screens OUT [--photos DIR]                 the main states
//     screens OUT --photos DIR --designs DIR     each design of a folder, on six photos
//     screens OUT --account                      signing in, the account and the settings
//     screens OUT [--photos DIR] --copy          generating texts and the engine that does it
//     screens OUT [--photos DIR] --publish       the publish sheet
//     screens OUT [--photos DIR] --library       the template library
//
// Also prints each text, icon, focus ring, tick and state of a control whose contrast is too low,
// in the largest of the sizes.
//
// Reaches each state through the session and the window, then takes it in both themes and at
// several sizes. Two runs over the same photos give equal bytes. Without --photos, a painted sample
// batch is used.

#include "app/account/AuthGateView.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/Button.h"
#include "app/controls/popovers/FontField.h"
#include "app/controls/popovers/Swatch.h"
#include "app/desktop/RecentPlaces.h"
#include "app/layers/ShapesPanel.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesBinding.h"
#include "app/presets/TemplatesPanel.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/DropVeil.h"
#include "app/window/KeysSheet.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "cli/SampleBatch.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "platform/photo/ThumbnailStore.h"
#include "studio/PhotoFolder.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"
#include "tools/AccountScreens.h"
#include "tools/ContactSheets.h"
#include "tools/CopyScreens.h"
#include "tools/LibraryScreens.h"
#include "tools/PublishScreens.h"
#include "tools/WindowPictures.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

// A clock that advances by a second at each call.
StudioSession::Clock steppingClock()
{
    return [now = StudioHistory::Time()]() mutable { return now += std::chrono::seconds(1); };
}

// Blocks every reader of a photo. In place of the stored thumbnail is a pipe, whose readers wait
// for a writer.
class HeldPhoto {
public:
    HeldPhoto(const QString& photo, const QString& thumbnailFolder)
        : m_pipe(ThumbnailStore(thumbnailFolder).fileFor(photo))
    {
        m_isHeld = mkfifo(QFile::encodeName(m_pipe).constData(), S_IRUSR | S_IWUSR) == 0;
    }
    ~HeldPhoto() { release(); }

    // Lets the readers continue. They decode the photo, as if it had no stored thumbnail.
    void release()
    {
        QFile pipe(m_pipe);
        if (std::exchange(m_isHeld, false) && pipe.open(QIODevice::ReadWrite))
            pipe.remove();
    }

private:
    QString m_pipe;
    bool m_isHeld = false;
};

class Screens {
public:
    Screens(const QDir& out, const QString& photoFolder)
        : m_photoFolder(photoFolder), m_thumbnails(m_folder.filePath(u"cache"_s)),
          m_cache(std::make_shared<PhotoCache>(m_thumbnails)),
          m_preferences(m_folder.filePath(u"preferences.sqlite"_s)),
          m_session(m_cache, m_preferences, steppingClock()),
          m_account(m_preferences, Scripted::signedIn),
          m_window(m_session, m_account.session(), m_cache, m_preferences),
          m_pictures(out, m_window,
                     [this] { return m_window.isIdle() && m_session.exports().areCostsUpToDate(); })
    {
        m_session.setAccountSession(m_account.session());
        m_session.setCreditJournal(m_account.journal(), m_folder.filePath(u"exports"_s));
        m_window.show();
        m_session.restoreWorkspaceIfNeeded();
        WindowPictures::waitFor([this] { return m_window.gate()->state() == Gate::open; });
    }

    // Returns false if a state was not reached.
    bool takeAll()
    {
        bool reached = take(u"empty"_s);
        m_window.shell()->dropVeil()->offer({.images = 24, .folder = false, .replaces = false});
        reached &= take(u"drop"_s);
        m_window.shell()->dropVeil()->hide();
        reached &= takeRecent();

        m_session.load({QUrl::fromLocalFile(m_folder.path())});
        reached &= take(u"nothing-found"_s);

        reached &= takeImport();
        reached &= take(u"batch"_s);
        const int last = int(m_session.batch().items.size()) - 1;
        m_session.selectItem(std::min(3, last), Qt::ShiftModifier);
        reached &= take(u"several-selected"_s);
        reached &= takeExports();
        for (const SocialFormat format : allCases<SocialFormat>()) {
            m_session.setFormat(format);
            m_session.selectSingleIndex(int(format) % (last + 1));
            reached &= take(u"format-"_s + row(format).templateKey.toString());
        }
        reached &= takePanels();
        m_session.setFormat(SocialFormat::carouselPortrait);
        m_session.setObjective(u"Llenar octubre con parejas y familias con perro"_s);
        m_session.selectSingleIndex(last);
        m_session.removeCurrentItem();
        reached &= take(u"discarded"_s);
        m_window.menu()->action(u"Atajos de teclado")->trigger();
        reached &= take(u"keys"_s);
        Q_EMIT m_window.findChild<KeysSheet*>()->closeRequested();
        return reached;
    }

    bool takeCopy()
    {
        m_session.load({QUrl::fromLocalFile(m_photoFolder)});
        return WindowPictures::waitFor([this] { return !m_session.batch().items.isEmpty(); }) &&
               takeCopyScreens({m_session, m_account, m_window, m_pictures});
    }

    bool takeLibrary()
    {
        m_session.load({QUrl::fromLocalFile(m_photoFolder)});
        return WindowPictures::waitFor([this] { return !m_session.batch().items.isEmpty(); }) &&
               takeLibraryScreens({m_session, m_window, m_pictures});
    }

    bool takePublish()
    {
        m_session.load({QUrl::fromLocalFile(m_photoFolder)});
        return WindowPictures::waitFor([this] { return !m_session.batch().items.isEmpty(); }) &&
               takePublishScreens({m_session, m_window, m_pictures});
    }

private:
    const PublicationItem& current() const { return *m_session.batch().currentItem(); }
    const Activity* activity(Activity::Kind kind) const
    {
        return m_session.activities().find(kind);
    }

    void select(CopySlot slot)
    {
        m_session.selectLayer(std::ranges::find(current().layers, slot, &TextLayer::slot)->id);
    }

    // Takes a picture of the empty window with recent places, of which one is lost.
    bool takeRecent()
    {
        auto* recent = m_window.findChild<RecentPlaces*>();
        const QDir folder(m_folder.path());
        for (const QString& name : {u"otoño 2026"_s, u"perros bienvenidos"_s, u"hayedo"_s}) {
            folder.mkpath(name);
            recent->remember({QUrl::fromLocalFile(folder.filePath(name))});
        }
        recent->remember({QUrl::fromLocalFile(folder.filePath(u"salon-tarde.jpg"_s))});
        recent->look();
        return take(u"empty-recent"_s);
    }

    // Takes a picture of an import that waits for one of the first photos; all others are done.
    bool takeImport()
    {
        const QList<QUrl> photos = photosInFolder(m_photoFolder);
        const QUrl waitedFor = photos[std::min<qsizetype>(2, photos.size() - 1)];
        workers().setMaxThreadCount(std::max(2, workers().maxThreadCount()));
        HeldPhoto held(waitedFor.toLocalFile(), m_thumbnails);
        m_session.load({QUrl::fromLocalFile(m_photoFolder)});
        const bool reached = WindowPictures::waitFor([&] {
            const Activity* import = activity(Activity::Kind::importing);
            return import && import->done == photos.size() - 1 &&
                   m_window.shell()->batchColumn()->grid()->keptPictures() ==
                       import->incoming.size();
        });
        m_pictures.takeNow(u"importing"_s);
        held.release();
        return reached;
    }

    // Takes pictures of an export of the selected images: while it runs, and when it is done.
    bool takeExports()
    {
        const int cost = int(m_session.exports().exportIndices().size()) * exportCreditCost;
        const int balance = m_account.session().account().balance - cost;
        m_account.answer(
            "POST /api/credits/social-copy/reserve",
            uR"({"ok":true,"balance":%1,"cost":%2})"_s.arg(balance).arg(cost).toUtf8());
        m_account.hold();    // makes the export wait for its reservation
        m_session.exportAll(m_folder.path());
        WindowPictures::waitFor([this] {
            return !m_session.isExporting() ||
                   // No fraction of the export is known while it waits for its reservation.
                   !activity(Activity::Kind::exporting)->fraction();
        });
        bool reached = m_session.isExporting() && take(u"exporting"_s);
        m_account.answer("GET /api/auth/me", ScriptedAccount::summary("Lucía Ferrer", balance));
        m_account.release();
        reached &= WindowPictures::waitFor([this] { return !m_session.isExporting(); });
        return reached && take(u"exported"_s);
    }

    // Moves a layer in all selected images, as dragging it on the canvas does.
    template <typename Layer>
    void drag(Layer layer, const CodableRect& frame)
    {
        layer.frame = frame;
        PublicationItem item = current();
        const auto put = [](auto& layers, const auto& moved) {
            *std::ranges::find(layers, moved.id, &Layer::id) = moved;
        };
        if constexpr (std::is_same_v<Layer, TextLayer>)
            put(item.layers, layer);
        else
            put(item.shapeLayers, layer);
        m_session.beginCanvasHistoryEdit();
        m_session.commitCanvasItem(item);
        m_session.endCanvasHistoryEdit(layer.id);
    }

    // Builds a design on four images: a headline without a box, and below it a panel with a text
    // and a button.
    void design()
    {
        m_session.setFormat(SocialFormat::carouselPortrait);
        m_session.selectSingleIndex(1);
        m_session.selectItem(4, Qt::ShiftModifier);
        m_session.setText(CopySlot::title, u"Respira otoño en los Picos"_s);
        m_session.setText(CopySlot::subtitle,
                          u"Casas rurales con chimenea, a un paso del sendero."_s);
        m_session.setText(CopySlot::callToAction, u"Reserva ahora"_s);
        m_session.addShape(ShapeKind::rectangle);
        drag(current().shapeLayers.last(), {0.07, 0.69, 0.86, 0.25});
        ShapeLayer box = current().shapeLayers.last();
        box.fill = CodableColor(QColor(0x10221A));
        box.fillOpacity = 0.84;
        m_session.editShape(box);
        m_session.addShape(ShapeKind::line);
        drag(current().shapeLayers.last(), {0.07, 0.3, 0.13, 0.02});
        ShapeLayer line = current().shapeLayers.last();
        line.stroke = CodableColor(QColor(0xF7EBDD));
        line.strokeOpacity = 1;
        m_session.editShape(line);
        const auto edit = [this](CopySlot slot, const CodableRect& frame, auto change) {
            TextLayer layer = *std::ranges::find(current().layers, slot, &TextLayer::slot);
            drag(layer, frame);
            layer.frame = frame;
            change(layer);
            m_session.editLayer(layer);
        };
        edit(CopySlot::title, {0.05, 0.05, 0.9, 0.23}, [](TextLayer& layer) {
            layer.alignment = LayerTextAlignment::leading;
            layer.hasBox = false;
            layer.fontScale = 1.15;
        });
        edit(CopySlot::subtitle, {0.09, 0.71, 0.82, 0.12}, [](TextLayer& layer) {
            layer.alignment = LayerTextAlignment::leading;
            layer.hasBox = false;
        });
        edit(CopySlot::callToAction, {0.11, 0.84, 0.42, 0.075}, [](TextLayer& layer) {
            layer.foreground = CodableColor(QColor(0x10221A));
            layer.background = CodableColor(QColor(0xF7EBDD));
            layer.backgroundOpacity = 1;
            layer.shadowOpacity = 0;
        });
        select(CopySlot::title);
    }

    bool takePanels()
    {
        SidePanel* panel = m_window.shell()->sidePanel();
        panel->setTab(SideTab::shapes);
        bool reached = take(u"panel-without-shapes"_s);
        panel->setTab(SideTab::text);
        design();
        reached &= take(u"panel-text-without-box"_s);
        select(CopySlot::callToAction);
        reached &= take(u"panel-text-with-box"_s);
        for (auto* swatch : panel->textPanel()->findChildren<Swatch*>()) {
            if (swatch->accessibleName() != u"Color de la caja"_s)
                continue;
            swatch->click();
            m_pictures.waitUntilCalm();
            m_pictures.takeAtThisSize(u"panel-color"_s);
            swatch->click();
        }
        auto* font = panel->textPanel()->findChild<FontField*>();
        font->click();
        m_pictures.waitUntilCalm();
        m_pictures.takeAtThisSize(u"panel-fonts"_s);
        m_window.setFocus();
        font->click();
        TextLayer unreadable =
            *std::ranges::find(current().layers, CopySlot::callToAction, &TextLayer::slot);
        const TextLayer readable = unreadable;
        unreadable.foreground = unreadable.background;
        m_session.editLayer(unreadable);
        reached &= take(u"panel-text-with-warning"_s);
        m_session.editLayer(readable);
        m_session.selectLayer(QUuid());
        reached &= take(u"panel-text-nothing-selected"_s);
        m_session.selectLayer(current().shapeLayers.first().id);
        panel->setTab(SideTab::shapes);
        reached &= take(u"panel-shapes"_s);
        panel->setTab(SideTab::templates);
        reached &= take(u"panel-templates-none-saved"_s);
        return reached & takePresets();
    }

    // Takes pictures of the templates and styles, both those of the user and those of the program.
    bool takePresets()
    {
        SidePanel* panel = m_window.shell()->sidePanel();
        SavedTemplates& saved = m_window.templates().saved();
        for (const QString& name : {u"Otoño 2026"_s, u"Con perro"_s, u"Rutas"_s}) {
            m_session.selectSingleIndex(m_session.batch().selectedIndex + 1);
            saved.renameTemplate(saved.saveTemplate(current(), m_session.batch().format), name);
        }
        select(CopySlot::title);
        for (const CopySlot slot : allCases<CopySlot>()) {
            select(slot);
            const TextLayer& text = *std::ranges::find(current().layers, slot, &TextLayer::slot);
            saved.renameStyle(saved.saveStyle(text), row(slot).displayName.toString());
        }
        panel->setTab(SideTab::templates);
        bool reached = take(u"panel-templates"_s);
        TemplateGallery* gallery = panel->templatesPanel()->gallery();
        const QUuid last = gallery->sections().last().tiles.last().id;
        Q_EMIT gallery->previewWanted(last);
        reached &= take(u"template-preview"_s);
        Q_EMIT gallery->previewEnded();
        Q_EMIT gallery->chosen(last);
        reached &= take(u"template-applied"_s);
        gallery->rename(saved.templates().entries().first().id);
        reached &= take(u"template-renamed"_s);
        m_window.setFocus();
        m_session.setFormat(SocialFormat::storyReel);
        reached &= take(u"panel-templates-story"_s);
        m_session.setFormat(SocialFormat::horizontal);
        reached &= take(u"panel-templates-horizontal"_s);
        panel->setTab(SideTab::text);
        auto* area = panel->textPanel()->parentWidget()->parentWidget();
        auto* bar = qobject_cast<QAbstractScrollArea*>(area)->verticalScrollBar();
        bar->setValue(bar->maximum());
        reached &= take(u"panel-styles"_s);
        bar->setValue(0);
        return reached;
    }

    bool take(const QString& name) { return m_pictures.take(name); }

    QString m_photoFolder;
    QTemporaryDir m_folder;
    QString m_thumbnails;
    std::shared_ptr<PhotoCache> m_cache;
    PreferencesStore m_preferences;
    StudioSession m_session;
    ScriptedAccount m_account;
    MainWindow m_window;
    WindowPictures m_pictures;
};

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme(), Motion::reduced);
    stopAnimations(application);
    QCommandLineParser parser;
    const QCommandLineOption photos(u"photos"_s, u"folder of photographs"_s, u"dir"_s);
    const QCommandLineOption designs(u"designs"_s, u"folder of template definitions"_s, u"dir"_s);
    const QCommandLineOption account(u"account"_s, u"only the screens of the account"_s);
    const QCommandLineOption copy(u"copy"_s, u"only the screens of generated texts"_s);
    const QCommandLineOption publish(u"publish"_s, u"only the screens of publishing"_s);
    const QCommandLineOption library(u"library"_s, u"only the screens of the template library"_s);
    parser.addOptions({photos, designs, account, copy, publish, library});
    parser.addPositionalArgument(u"out"_s, u"folder for the pictures"_s);
    parser.addHelpOption();
    parser.process(application);
    if (parser.positionalArguments().size() != 1 ||
        !QDir().mkpath(parser.positionalArguments().first()))
        parser.showHelp(2);

    const QDir out(parser.positionalArguments().first());
    if (parser.isSet(account))
        return takeAccountScreens(out) ? 0 : 1;
    const QTemporaryDir sample;
    QString folder = parser.value(photos);
    if (folder.isEmpty()) {
        folder = sample.path();
        if (!paintSampleBatch(folder))
            return 1;
    }
    if (parser.isSet(designs))
        return makeContactSheets(out, folder, parser.value(designs)) ? 0 : 1;
    Screens screens(out, QDir(folder).absolutePath());
    if (parser.isSet(copy))
        return screens.takeCopy() ? 0 : 1;
    if (parser.isSet(publish))
        return screens.takePublish() ? 0 : 1;
    if (parser.isSet(library))
        return screens.takeLibrary() ? 0 : 1;
    const bool reached =
        screens.takeAll() && screens.takeCopy() && screens.takePublish() && screens.takeLibrary();
    return reached && takeAccountScreens(out) ? 0 : 1;
}
