#include "app/MainWindow.h"

#include "app/BatchColumn.h"
#include "app/ComposeBar.h"
#include "app/DropVeil.h"
#include "app/EmptyState.h"
#include "app/Icons.h"
#include "app/ItemPictures.h"
#include "app/StagePanel.h"
#include "app/StudioShell.h"
#include "app/Theme.h"
#include "app/TopBar.h"
#include "app/ViewBar.h"
#include "app/controls/StatusLine.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

const QString themeKey = u"moltiva.theme"_s;
const QString batchWidthKey = u"moltiva.batchColumnWidth"_s;
const QString geometryKey = u"moltiva.windowGeometry"_s;
const QString folderKey = u"moltiva.importFolder"_s;
constexpr int moreMayCome = 1000;    // ms
constexpr int narrowWindow = 1280;
const QByteArray lightName = "light", darkName = "dark";

QList<FormatChoice> formatChoices()
{
    QList<FormatChoice> choices;
    for (const auto& format : Vocabulary<SocialFormat>::rows) {
        const QString ratio = format.ratioLabel.toString();
        choices.append({ratio, format.rawValue.toString(), QString(ratio).replace(u':', u" a "_s),
                        format.exportSize.toSize()});
    }
    return choices;
}

// What a file chooser shows; every file can be chosen, because what it holds decides.
QString imageFilter()
{
    QStringList patterns;
    for (const QString& extension : {u"jpg"_s, u"jpeg"_s, u"png"_s, u"heic"_s, u"heif"_s, u"tif"_s,
                                     u"tiff"_s, u"webp"_s, u"bmp"_s, u"gif"_s}) {
        patterns.append(u"*."_s + extension);
        patterns.append(u"*."_s + extension.toUpper());
    }
    return u"Imágenes (%1);;Todos los archivos (*)"_s.arg(patterns.join(u' '));
}

QList<QUrl> localFiles(const QMimeData* data)
{
    QList<QUrl> files = data->urls();
    files.removeIf([](const QUrl& url) { return !url.isLocalFile(); });
    return files;
}

DropOffer offerOf(const QList<QUrl>& files, bool replaces)
{
    DropOffer offer{.images = int(files.size()), .folder = false, .replaces = replaces};
    offer.folder = std::ranges::any_of(
        files, [](const QUrl& url) { return QFileInfo(url.toLocalFile()).isDir(); });
    return offer;
}

StatusKind kindOf(StatusTone tone)
{
    switch (tone) {
    case StatusTone::info:
        return StatusKind::info;
    case StatusTone::done:
        return StatusKind::ok;
    case StatusTone::problem:
        return StatusKind::warning;
    }
    Q_UNREACHABLE();
}

}    // namespace

MainWindow::MainWindow(StudioSession& session, const std::shared_ptr<PhotoCache>& photos,
                       PreferencesStore& preferences)
    : m_session(session), m_preferences(preferences),
      m_shell(new StudioShell(formatChoices(), this)), m_tiles(new TilePictures(photos, this)),
      m_stage(new StagePhoto(photos, this)), m_menu(new QMenu(this))
{
    setWindowTitle(u"Moltiva"_s);
    setAcceptDrops(true);
    setMinimumSize(1200, 720);
    // Less than the screen where that is small, with room for the frame that the system adds.
    resize(QSize(1440, 900).boundedTo(screen()->availableSize() - QSize(0, 40)));
    m_givenLately.setSingleShot(true);
    connect(&m_givenLately, &QTimer::timeout, this, [this] {
        if (m_session.isImporting())
            m_givenLately.start(moreMayCome);
        else
            m_given.clear();
    });
    connectPanels();
    connectSession();
    buildMenu();
    restorePreferences();
    setFocus();    // else the first button takes it, and with it the arrows
    showBatch();
    showStatus();
}

// A field that still has the focus ends its edit as it goes: that reaches the session, but must not
// come back to a window whose members are gone.
MainWindow::~MainWindow()
{
    disconnect(&m_session, nullptr, this, nullptr);
}

bool MainWindow::isSettled() const
{
    return !m_session.isImporting() && m_tiles->isIdle() && m_stage->isIdle() &&
           m_shell->stage()->canvas()->isSettled();
}

void MainWindow::connectPanels()
{
    const TopBar* top = m_shell->topBar();
    connect(top, &TopBar::importImagesRequested, this, &MainWindow::importImages);
    connect(top, &TopBar::importFolderRequested, this, &MainWindow::importFolder);
    connect(top, &TopBar::formatChosen, &m_session,
            [this](int index) { m_session.setFormat(SocialFormat(index)); });
    connect(m_shell->emptyState(), &EmptyState::importImagesRequested, this,
            &MainWindow::importImages);
    connect(m_shell->emptyState(), &EmptyState::importFolderRequested, this,
            &MainWindow::importFolder);
    connect(m_shell->composeBar(), &ComposeBar::objectiveEdited, &m_session,
            &StudioSession::setObjective);
    connect(m_shell->viewBar(), &ViewBar::previousRequested, &m_session,
            &StudioSession::previousItem);
    connect(m_shell->viewBar(), &ViewBar::nextRequested, &m_session, &StudioSession::nextItem);

    const BatchColumn* column = m_shell->batchColumn();
    connect(column, &BatchColumn::clicked, this,
            [this](int index, Qt::KeyboardModifiers modifiers) {
                if (!showsIncoming())
                    m_session.selectItem(index, modifiers);
            });
    connect(column, &BatchColumn::selectAllRequested, this, &MainWindow::selectAll);
    connect(column, &BatchColumn::discardRequested, this, &MainWindow::discardCurrent);
    connect(column, &BatchColumn::contextMenuRequested, this, &MainWindow::showTileMenu);
    connect(column, &BatchColumn::picturesWanted, this,
            [this](const QList<QUuid>& ids, QSize pixels) {
                QList<PublicationItem> items;
                for (const QUuid& id : ids) {
                    const auto& shown = shownItems();
                    const auto found = std::ranges::find(shown, id, &PublicationItem::id);
                    if (found != shown.end())
                        items.append(*found);
                }
                m_tiles->want(items, m_session.batch().format, pixels);
            });
    connect(m_tiles, &TilePictures::ready, this, &MainWindow::showTile);

    connect(m_shell->stage(), &StagePanel::pictureSizeChanged, this, &MainWindow::showStage);
    CanvasInteractionView* canvas = m_shell->stage()->canvas();
    canvas->interaction().onPrevious = [this] { m_session.previousItem(); };
    canvas->interaction().onNext = [this] { m_session.nextItem(); };
    connect(m_shell->viewBar(), &ViewBar::safeZoneToggled, canvas,
            &CanvasInteractionView::setSafeZone);
    connect(m_stage, &StagePhoto::ready, canvas, &CanvasInteractionView::setPhoto);
    connect(m_stage, &StagePhoto::photoMissing, this, [this](const QString& name) {
        m_shell->statusLine()->setStatus(
            {StatusKind::error,
             u"No se puede leer la foto de %1. ¿Se ha movido o borrado?"_s.arg(name)});
    });
    connect(m_shell->statusLine(), &StatusLine::stopRequested, &m_session,
            &StudioSession::stopImport);
    connect(m_shell, &StudioShell::batchWidthDragged, this, [this](int width) {
        m_preferences.setValue(batchWidthKey, QByteArray::number(width));
    });
}

void MainWindow::connectSession()
{
    connect(&m_session, &StudioSession::batchChanged, this, &MainWindow::showBatch);
    connect(&m_session, &StudioSession::statusChanged, this, &MainWindow::showStatus);
    connect(&m_session, &StudioSession::importChanged, this, [this] {
        showTiles();
        showStatus();
    });
}

void MainWindow::buildMenu()
{
    const auto add = [this](QMenu* menu, const QString& text, const QKeySequence& keys, auto run,
                            Icon icon = Icon::none) {
        QAction* action =
            icon == Icon::none ? new QAction(text, menu) : new QAction(menuIcon(icon), text, menu);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, run);
        menu->addAction(action);
        addAction(action);    // its key acts with the menu closed
        return action;
    };
    QMenu* file = m_menu->addMenu(u"Archivo"_s);
    add(
        file, u"Importar imágenes…"_s, QKeySequence(u"Ctrl+O"_s), [this] { importImages(); },
        Icon::importImages);
    add(
        file, u"Importar carpeta…"_s, QKeySequence(u"Ctrl+Shift+O"_s), [this] { importFolder(); },
        Icon::importFolder);
    add(file, u"Detener la importación"_s, QKeySequence(u"Ctrl+."_s),
        [this] { m_session.stopImport(); });
    file->addSeparator();
    add(file, u"Salir"_s, QKeySequence(u"Ctrl+Q"_s), [this] { close(); });

    QMenu* edit = m_menu->addMenu(u"Edición"_s);
    add(
        edit, u"Seleccionar todas las imágenes"_s, QKeySequence(u"Ctrl+A"_s),
        [this] { selectAll(); }, Icon::selectAll);
    add(
        edit, u"Descartar imagen"_s, QKeySequence(u"Ctrl+Shift+D"_s), [this] { discardCurrent(); },
        Icon::discard);

    QMenu* view = m_menu->addMenu(u"Ver"_s);
    add(
        view, u"Imagen anterior"_s, QKeySequence(Qt::Key_PageUp),
        [this] { m_session.previousItem(); }, Icon::previous);
    add(
        view, u"Imagen siguiente"_s, QKeySequence(Qt::Key_PageDown),
        [this] { m_session.nextItem(); }, Icon::next);
    view->addSeparator();
    for (const SocialFormat format : allCases<SocialFormat>()) {
        const QKeySequence keys(u"Ctrl+Alt+%1"_s.arg(int(format) + 1));
        add(view, rawValue(format), keys, [this, format] { m_session.setFormat(format); });
    }
    view->addSeparator();
    const auto chooseTheme = [this](const Theme& theme, const QByteArray& name) {
        applyTheme(theme);
        m_preferences.setValue(themeKey, name);
    };
    add(view, u"Tema oscuro"_s, {}, [chooseTheme] { chooseTheme(darkTheme(), darkName); });
    add(view, u"Tema claro"_s, {}, [chooseTheme] { chooseTheme(lightTheme(), lightName); });
    m_shell->topBar()->setMenu(m_menu);
}

void MainWindow::restorePreferences()
{
    if (m_preferences.value(themeKey) == lightName)
        applyTheme(lightTheme());
    if (const auto width = m_preferences.value(batchWidthKey); width && width->toInt() > 0)
        m_shell->setBatchWidth(width->toInt());
    if (const auto geometry = m_preferences.value(geometryKey))
        restoreGeometry(*geometry);
    m_lastFolder = QString::fromUtf8(m_preferences.value(folderKey).value_or(QByteArray()));
    if (!QFileInfo(m_lastFolder).isDir())
        m_lastFolder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // What is still being typed counts.
    setFocus();
    m_preferences.setValue(geometryKey, saveGeometry());
    QWidget::closeEvent(event);
}

void MainWindow::choose(const QString& title, QFileDialog::FileMode mode)
{
    auto* dialog = new QFileDialog(this, title, m_lastFolder, imageFilter());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    // The signals that carry the choice differ between the systems' dialogs and the toolkit's own.
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] { load(dialog->selectedUrls()); });
    dialog->open();
}

void MainWindow::importImages()
{
    choose(u"Importar imágenes"_s, QFileDialog::ExistingFiles);
}

void MainWindow::importFolder()
{
    choose(u"Importar carpeta"_s, QFileDialog::Directory);
}

void MainWindow::open(const QList<QUrl>& addresses)
{
    QList<QUrl> files = addresses;
    files.removeIf([](const QUrl& url) { return !url.isLocalFile(); });
    if (files.size() < addresses.size()) {
        m_shell->statusLine()->setStatus(
            {StatusKind::warning, u"Moltiva no reconoce el enlace que se ha abierto."_s});
    }
    if (files.isEmpty())
        return;
    const QList<QUrl> all = m_given + files;
    load(all);
    m_given = all;
    m_givenLately.start(moreMayCome);
}

void MainWindow::comeForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::load(const QList<QUrl>& filesAndFolders)
{
    if (filesAndFolders.isEmpty())
        return;
    m_given.clear();
    const QFileInfo first(filesAndFolders.first().toLocalFile());
    m_lastFolder = first.isDir() ? first.absoluteFilePath() : first.absolutePath();
    m_preferences.setValue(folderKey, m_lastFolder.toUtf8());
    m_session.load(filesAndFolders);
}

// A batch that the column does not show is not changed from it.
void MainWindow::selectAll()
{
    if (!showsIncoming())
        m_session.selectAll();
}

void MainWindow::discardCurrent()
{
    if (!showsIncoming())
        m_session.removeCurrentItem();
}

void MainWindow::showTileMenu(int index, QPoint globalPosition)
{
    // The menu speaks of the tile it was opened on, without losing a selection the tile is part of.
    if (index < 0 || index >= m_session.batch().items.size() || showsIncoming())
        return;
    if (!m_session.batch().selectedItemIDs.contains(m_session.batch().items[index].id))
        m_session.selectSingleIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QUuid id = m_session.batch().items[index].id;
    connect(menu->addAction(menuIcon(Icon::discard), u"Descartar imagen"_s), &QAction::triggered,
            this, [this, id] { m_session.removeItem(id); });
    connect(menu->addAction(menuIcon(Icon::selectAll), u"Seleccionar todas las imágenes"_s),
            &QAction::triggered, this, &MainWindow::selectAll);
    menu->popup(globalPosition);
}

void MainWindow::resizeEvent(QResizeEvent*)
{
    m_shell->setGeometry(rect());
    m_shell->viewBar()->setLabels(width() < narrowWindow ? Labels::hidden : Labels::shown);
}

// Reached only by keys that whatever has the focus did not take: a text field keeps its arrows.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        m_session.previousItem();
        return;
    case Qt::Key_Right:
        m_session.nextItem();
        return;
    case Qt::Key_Escape:
        setFocus();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> files = localFiles(event->mimeData());
    if (files.isEmpty())
        return;
    m_shell->dropVeil()->offer(offerOf(files, !m_session.batch().items.isEmpty()));
    event->acceptProposedAction();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*)
{
    m_shell->dropVeil()->hide();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    m_shell->dropVeil()->hide();
    event->acceptProposedAction();
    load(localFiles(event->mimeData()));
}

// While an import runs, the column shows what it has accepted so far; the batch is still the old
// one, and a click in the column would mean another image than the one under it.
bool MainWindow::showsIncoming() const
{
    return m_session.isImporting() && !m_session.importProgress().accepted.isEmpty();
}

const PublicationItems& MainWindow::shownItems() const
{
    return showsIncoming() ? m_session.importProgress().accepted : m_session.batch().items;
}

void MainWindow::showTile(const TileRequest& request, const QImage& picture)
{
    // A picture begun before the last change comes too late: the newer one is on its way.
    if (picture.isNull())
        return;
    const auto& items = shownItems();
    const auto item = std::ranges::find(items, request.item.id, &PublicationItem::id);
    if (item != items.end() && *item == request.item && m_session.batch().format == request.format)
        m_shell->batchColumn()->setPicture(request.item.id, picture);
}

void MainWindow::showBatch()
{
    const Batch& batch = m_session.batch();
    m_shell->topBar()->setFormat(int(batch.format));
    m_shell->composeBar()->setObjective(batch.objective);
    m_shell->viewBar()->setPosition(batch.selectedIndex, int(batch.items.size()));
    m_shell->setStage(batch.items.isEmpty() ? StudioShell::Stage::empty
                                            : StudioShell::Stage::picture);
    const auto& format = row(batch.format);
    m_shell->stage()->setPosition(batch.selectedIndex, int(batch.items.size()));
    m_shell->stage()->setFormat(format.rawValue.toString(), format.ratioLabel.toString(),
                                format.exportSize.toSize());
    m_shell->batchColumn()->setRatio(format.aspectRatio);
    m_shell->statusLine()->setKeyHints(batch.items.size() > 1
                                           ? QList<KeyHint>{{{u"←"_s, u"→"_s}, u"Cambiar imagen"_s}}
                                           : QList<KeyHint>{});
    showTiles();
    showStage();
}

void MainWindow::showTiles()
{
    const Batch& batch = m_session.batch();
    const PublicationItems& items = shownItems();
    const bool incoming = showsIncoming();
    QList<Tile> tiles;
    tiles.reserve(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        tiles.append({.id = items[i].id,
                      .name = items[i].filename(),
                      .current = !incoming && i == batch.selectedIndex,
                      .selected = !incoming && batch.selectedItemIDs.contains(items[i].id),
                      .state = TileState::normal});
    }
    m_shell->batchColumn()->setTiles(tiles);

    const bool otherFormat = m_knownFormat != batch.format;
    QHash<QUuid, const PublicationItem*> known;
    for (const PublicationItem& item : m_known)
        known.insert(item.id, &item);
    for (const PublicationItem& item : items) {
        const PublicationItem* before = known.value(item.id);
        if (before && (otherFormat || !(*before == item)))
            m_shell->batchColumn()->pictureOutdated(item.id);
    }
    m_known = items;
    m_knownFormat = batch.format;
}

void MainWindow::showStage()
{
    const PublicationItem* item = m_session.batch().currentItem();
    const SocialFormat format = m_session.batch().format;
    // The item first: the photo is taken for that of the item shown.
    m_shell->stage()->canvas()->setItem(item ? std::optional(*item) : std::nullopt, format);
    m_shell->viewBar()->setFormat(format);
    if (!item)
        return m_stage->clear();
    m_shell->viewBar()->setPlacement(item->placement);
    m_stage->show(*item, format, m_shell->stage()->pictureSize());
}

void MainWindow::showStatus()
{
    Status status{.kind = kindOf(m_session.statusTone()), .sentence = m_session.status()};
    if (m_session.isImporting()) {
        const PhotoImport::Progress& progress = m_session.importProgress();
        status.kind = StatusKind::busy;
        status.progress =
            progress.total > 0 ? double(progress.looked) / double(progress.total) : 0.0;
        status.stoppable = true;
    }
    m_shell->statusLine()->setStatus(status);
}
