#include "app/presets/TemplateGallery.h"

#include "app/controls/PartsAccessible.h"
#include "app/controls/fields/LineField.h"
#include "app/presets/PresetGrid.h"
#include "app/theme/Painting.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

// In pixels. The right margin is small because the scroll bar lies beside it.
constexpr int gallerySide = 16, compactGallerySide = 12, galleryScrollBar = 12;
constexpr int narrowestGalleryName = 80, scrollStep = 48, viewMargin = 8;
constexpr int restBeforePreview = 300, restBeforeLargePreview = 1500;    // ms
constexpr qsizetype mostPictureBytes = qsizetype(32) << 20;

}    // namespace

TemplateGallery::TemplateGallery(QWidget* parent)
    : QAbstractScrollArea(parent), m_left(gallerySide), m_pictures(mostPictureBytes)
{
    setAccessibleName(u"Plantillas"_s);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always shows the scroll bar, so that the number of columns does not depend on it. While there
    // is nothing to scroll, the bar paints nothing.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setSingleStep(scrollStep);
    viewport()->setAttribute(Qt::WA_Hover);
    viewport()->setAutoFillBackground(false);
    m_wishLater.setSingleShot(true);
    m_wishLater.setInterval(0);
    connect(&m_wishLater, &QTimer::timeout, this, &TemplateGallery::wish);
    for (QTimer* timer : {&m_resting, &m_restingLonger})
        timer->setSingleShot(true);
    m_resting.setInterval(restBeforePreview);
    m_restingLonger.setInterval(restBeforeLargePreview);
    connect(&m_resting, &QTimer::timeout, this, [this] {
        if (m_restedOn.isNull())
            return leave();
        setPreviewed(m_restedOn);
        Q_EMIT previewWanted(m_restedOn);
    });
    connect(&m_restingLonger, &QTimer::timeout, this,
            [this] { Q_EMIT largePreviewWanted(m_restedOn); });
}

void TemplateGallery::setSections(const QList<GallerySection>& sections)
{
    if (sections == m_sections)
        return;
    const int fixed = m_pointed.part >= 0 ? m_pointed.part : (hasFocus() ? m_marked : -1);
    const PartName fixedName = nameOf(fixed), markedName = nameOf(m_marked);
    const PartName pressedName = nameOf(m_pressed.part);
    const int height = fixed >= 0 ? partRect(fixed).top() : 0;
    const int formerMarked = m_marked;
    const QString formerText = hasFocus() ? accessibleText(m_marked) : QString();
    m_pointed = {};
    m_sections = sections;
    lay();
    // The button may be released after this: the press still counts.
    m_pressed.part = partNamed(pressedName);
    if (m_pressed.part < 0)
        m_pressed = {};
    if (const int part = partNamed(fixedName); part >= 0) {
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(bar->value() + partRect(part).top() - height);
    }
    m_marked = partNamed(markedName);
    if (m_marked < 0 && formerMarked > 0)
        m_marked = std::min(formerMarked, int(m_layout.parts.size()) - 1);
    if (m_marked < 0 || m_layout.parts[m_marked].kind == GalleryPart::Kind::note)
        m_marked = startOfKeys();
    if (hasFocus() && (m_marked != formerMarked || accessibleText(m_marked) != formerText))
        tellMarked();
    if (m_name && partOf(m_renamed) < 0)
        endRename(RenameEnd::kept);
    lookForPointer();
}

void TemplateGallery::setRatio(double ratio)
{
    if (ratio <= 0 || ratio == m_ratio)
        return;
    m_ratio = ratio;
    m_pictures.clear();
    lay();
}

void TemplateGallery::setClass(WindowClass windowClass)
{
    m_left = windowClass == WindowClass::compact ? compactGallerySide : gallerySide;
    lay();
}

void TemplateGallery::setAppliedTest(const std::function<bool(QUuid)>& isApplied)
{
    m_appliedTest = isApplied;
    forgetApplied();
}

void TemplateGallery::forgetApplied()
{
    const QString before = hasFocus() ? accessibleText(m_marked) : QString();
    m_applied.clear();
    viewport()->update();
    if (hasFocus() && accessibleText(m_marked) != before)
        tellPart(this, QAccessible::NameChanged, m_marked);
}

bool TemplateGallery::isApplied(QUuid id) const
{
    auto known = m_applied.find(id);
    if (known == m_applied.end())
        known = m_applied.insert(id, m_appliedTest && m_appliedTest(id));
    return *known;
}

void TemplateGallery::setPreviewed(QUuid id)
{
    if (id == m_previewed)
        return;
    m_previewed = id;
    viewport()->update();
}

QSize TemplateGallery::picturePixels() const
{
    const QSizeF pixels = QSizeF(m_layout.tile) * devicePixelRatioF();
    return {qRound(pixels.width()), qRound(pixels.height())};
}

void TemplateGallery::setPicture(QUuid id, const QImage& picture)
{
    const QImage shown = picture.isNull()
                             ? this->picture(id)
                             : roundedPicture(picture, Radius::thumbnail * devicePixelRatioF());
    m_pictures.insert(id, new Picture{shown, m_generation},
                      std::max<qsizetype>(1, shown.sizeInBytes()));
    for (const int part : visibleTiles()) {
        if (tile(part)->id == id)
            updatePart(part);
    }
}

QImage TemplateGallery::picture(QUuid id) const
{
    const Picture* known = m_pictures.object(id);
    return known ? known->image : QImage();
}

void TemplateGallery::outdatePicture(QUuid id)
{
    if (Picture* known = m_pictures.object(id))
        known->generation = m_generation - 1;
    m_wished.clear();
    wishLater();
}

void TemplateGallery::outdatePictures()
{
    ++m_generation;
    m_wished.clear();
    wishLater();
}

void TemplateGallery::wishLater()
{
    if (isVisible())
        m_wishLater.start();
}

void TemplateGallery::wish()
{
    QList<QUuid> ids;
    for (const int part : visibleTiles()) {
        const QUuid id = tile(part)->id;
        const Picture* known = m_pictures.object(id);
        const bool isCurrent = known && known->generation == m_generation &&
                               (known->image.isNull() || known->image.size() == picturePixels());
        if (!isCurrent && !ids.contains(id))
            ids.append(id);
    }
    if (ids == m_wished && picturePixels() == m_wishedPixels)
        return;
    m_wished = ids;
    m_wishedPixels = picturePixels();
    Q_EMIT picturesWanted(ids);
}

void TemplateGallery::lay()
{
    m_layout = laidOut(m_sections, {.width = viewport()->width(),
                                    .left = m_left,
                                    .right = std::max(0, m_left - galleryScrollBar),
                                    .ratio = m_ratio});
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, m_layout.height - viewport()->height()));
    viewport()->update();
    placeName();
    wishLater();
}

TemplateGallery::PartName TemplateGallery::nameOf(int part) const
{
    if (part < 0 || part >= m_layout.parts.size())
        return {};
    const GalleryPart& named = m_layout.parts[part];
    const GalleryTile* shown = tile(part);
    return {m_sections[named.section].key, named.kind, shown ? shown->id : QUuid()};
}

int TemplateGallery::partNamed(const PartName& name) const
{
    for (int i = 0; i < m_layout.parts.size(); ++i) {
        if (nameOf(i) == name)
            return i;
    }
    return -1;
}

const GalleryTile* TemplateGallery::tile(int part) const
{
    if (part < 0 || part >= m_layout.parts.size() ||
        m_layout.parts[part].kind != GalleryPart::Kind::tile)
        return nullptr;
    const GalleryPart& shown = m_layout.parts[part];
    return &m_sections[shown.section].tiles[shown.tile];
}

int TemplateGallery::partOf(QUuid id) const
{
    for (int i = 0; i < m_layout.parts.size(); ++i) {
        const GalleryTile* shown = tile(i);
        if (shown && shown->id == id &&
            m_sections[m_layout.parts[i].section].look != GalleryLook::recent)
            return i;
    }
    return -1;
}

QRect TemplateGallery::partRect(int part) const
{
    return m_layout.parts[part].whole.translated(0, -verticalScrollBar()->value());
}

QList<int> TemplateGallery::visibleTiles() const
{
    QList<int> visible;
    for (int i = 0; i < m_layout.parts.size(); ++i) {
        if (tile(i) && partRect(i).intersects(viewport()->rect()))
            visible.append(i);
    }
    return visible;
}

TemplateGallery::Pointed TemplateGallery::pointedAt(QPoint position) const
{
    const QPoint at = position + QPoint(0, verticalScrollBar()->value());
    for (int i = 0; i < m_layout.parts.size(); ++i) {
        const GalleryPart& part = m_layout.parts[i];
        if (!part.whole.contains(at) || part.kind == GalleryPart::Kind::note)
            continue;
        if (!tile(i) || m_sections[part.section].look == GalleryLook::recent)
            return {i, GallerySpot::part};
        if (discOf(part).contains(at))
            return {i, GallerySpot::disc};
        return {i, moreOf(part).contains(at) ? GallerySpot::more : GallerySpot::part};
    }
    return {};
}

int TemplateGallery::partAt(QPoint position) const
{
    return pointedAt(position).part;
}

GalleryPartLook TemplateGallery::lookOf(int part) const
{
    GalleryPartLook look{.hovered = part == m_pointed.part ? m_pointed.spot : GallerySpot::none,
                         .isMarked = m_showsMark && part == m_marked};
    if (const GalleryTile* shown = tile(part)) {
        look.picture = picture(shown->id);
        look.isApplied = isApplied(shown->id);
        look.isPreviewed = shown->id == m_previewed;
        look.isRenamed = m_name && shown->id == m_renamed;
    }
    return look;
}

void TemplateGallery::point(const Pointed& pointed)
{
    if (pointed == m_pointed)
        return;
    const Pointed before = std::exchange(m_pointed, pointed);
    updatePart(before.part);
    updatePart(pointed.part);
    if (before.part == pointed.part)
        return;
    const GalleryTile* shown = tile(pointed.part);
    // Off the tiles too, waits before it ends the preview: meanwhile the pointer may reach another
    // tile, whose preview then replaces this one.
    if (shown || tile(before.part))
        rest(shown ? shown->id : QUuid(), true);
}

void TemplateGallery::lookForPointer()
{
    const QPoint at = viewport()->mapFromGlobal(QCursor::pos());
    point(viewport()->underMouse() && viewport()->rect().contains(at) ? pointedAt(at) : Pointed());
}

void TemplateGallery::updatePart(int part)
{
    if (part >= 0 && part < m_layout.parts.size())
        viewport()->update(
            partRect(part).adjusted(-galleryReach, -galleryReach, galleryReach, galleryReach));
}

void TemplateGallery::rest(QUuid id, bool isPointer)
{
    m_restedOn = id;
    m_resting.start();
    if (isPointer && !id.isNull())
        m_restingLonger.start();
    else
        m_restingLonger.stop();
}

void TemplateGallery::leave()
{
    m_resting.stop();
    m_restingLonger.stop();
    setPreviewed({});
    Q_EMIT previewEnded();
}

void TemplateGallery::press(const Pointed& pointed)
{
    const GalleryTile* shown = tile(pointed.part);
    switch (pointed.spot) {
    case GallerySpot::none:
        return;
    case GallerySpot::part:
        return activate(pointed.part);
    case GallerySpot::disc:
        Q_EMIT favouriteToggled(shown->id);
        return;
    case GallerySpot::more:
        return showMenu(pointed.part);
    }
}

void TemplateGallery::activate(int part)
{
    if (part < 0 || part >= m_layout.parts.size())
        return;
    const GallerySection& section = m_sections[m_layout.parts[part].section];
    switch (m_layout.parts[part].kind) {
    case GalleryPart::Kind::heading:
        Q_EMIT foldRequested(section.key, !section.isFolded);
        break;
    case GalleryPart::Kind::random:
        Q_EMIT randomRequested();
        break;
    case GalleryPart::Kind::refresh:
        Q_EMIT refreshRequested(section.key);
        break;
    case GalleryPart::Kind::sectionMenu:
        showMenu(part);
        break;
    case GalleryPart::Kind::note:
        break;
    case GalleryPart::Kind::tile: {
        const QUuid id = tile(part)->id;
        leave();
        Q_EMIT chosen(id);
        break;
    }
    }
}

void TemplateGallery::showMenu(int part)
{
    if (part < 0 || part >= m_layout.parts.size())
        return;
    const GalleryPart& shown = m_layout.parts[part];
    const QPoint scrolled(0, verticalScrollBar()->value());
    const GallerySection& section = m_sections[shown.section];
    if (const GalleryTile* design = tile(part)) {
        const QUuid id = design->id;
        const QRect at(viewport()->mapToGlobal(shown.rect.topLeft() - scrolled), shown.rect.size());
        leave();
        Q_EMIT menuRequested(id, at);
    } else if (section.hasMenu) {
        const QString key = section.key;
        Q_EMIT sectionMenuRequested(key,
                                    viewport()->mapToGlobal(shown.rect.bottomLeft() - scrolled));
    }
}

bool TemplateGallery::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        point(pointedAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
        break;
    case QEvent::HoverLeave:
        point({});
        break;
    case QEvent::ScreenChangeInternal:    // another device pixel ratio needs other pictures
        wishLater();
        break;
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const Pointed pointed = pointedAt(help->pos());
        QString tip;
        if (pointed.part >= 0) {
            const GalleryPart& part = m_layout.parts[pointed.part];
            const GallerySection& section = m_sections[part.section];
            if (pointed.spot == GallerySpot::disc)
                tip = tile(pointed.part)->isFavourite ? u"Quitar de favoritas"_s
                                                      : u"Añadir a favoritas"_s;
            else if (pointed.spot == GallerySpot::more ||
                     part.kind == GalleryPart::Kind::sectionMenu)
                tip = u"Más acciones"_s;
            else if (part.kind == GalleryPart::Kind::refresh)
                tip = u"Comprobar ahora"_s;
            else if (part.kind == GalleryPart::Kind::heading)
                tip = section.stateTip;
            else if (tile(pointed.part) && isNameCut(section, part, lookOf(pointed.part)))
                tip = tile(pointed.part)->name;
        }
        if (tip.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), plainToolTip(tip), viewport(),
                               partRect(pointed.part));
        return true;
    }
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void TemplateGallery::paintEvent(QPaintEvent* event)
{
    const Theme& theme = themeOf(this);
    QPainter painter(viewport());
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(event->rect(), theme.panel);
    const int scrolled = verticalScrollBar()->value();
    painter.translate(0, -scrolled);
    const QRect shown = event->rect()
                            .translated(0, scrolled)
                            .adjusted(-galleryReach, -galleryReach, galleryReach, galleryReach);
    for (int i = 0; i < m_layout.parts.size(); ++i) {
        const GalleryPart& part = m_layout.parts[i];
        if (part.whole.intersects(shown))
            paintPart(painter, theme, m_sections[part.section], part, lookOf(i));
    }
}

void TemplateGallery::resizeEvent(QResizeEvent*)
{
    lay();
}

void TemplateGallery::scrollContentsBy(int, int)
{
    viewport()->update();
    placeName();
    lookForPointer();
    wishLater();
}

void TemplateGallery::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    wishLater();
}

void TemplateGallery::hideEvent(QHideEvent* event)
{
    QAbstractScrollArea::hideEvent(event);
    m_wishLater.stop();
    m_wished.clear();
    m_pointed = m_pressed = {};
    leave();
}

void TemplateGallery::mousePressEvent(QMouseEvent* event)
{
    m_pressed =
        event->button() == Qt::LeftButton ? pointedAt(event->position().toPoint()) : Pointed();
}

void TemplateGallery::mouseReleaseEvent(QMouseEvent* event)
{
    const Pointed pressed = std::exchange(m_pressed, {});
    if (event->button() == Qt::LeftButton && pressed == pointedAt(event->position().toPoint()))
        press(pressed);
}

void TemplateGallery::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        return showMenu(m_marked);
    const int part = partAt(event->pos());
    if (const GalleryTile* shown = tile(part)) {
        const QUuid id = shown->id;
        leave();
        Q_EMIT menuRequested(id, {event->globalPos(), QSize()});
    } else if (part >= 0 && m_sections[m_layout.parts[part].section].hasMenu) {
        Q_EMIT sectionMenuRequested(m_sections[m_layout.parts[part].section].key,
                                    event->globalPos());
    }
}

void TemplateGallery::keyPressEvent(QKeyEvent* event)
{
    if (m_marked < 0 || m_name)
        return event->ignore();
    const GalleryPart& part = m_layout.parts[m_marked];
    const GallerySection& section = m_sections[part.section];
    const GalleryTile* shown = markedTile();
    const bool isHeading = part.kind == GalleryPart::Kind::heading;
    const int key = event->key();
    if (isHeading && key == (section.isFolded ? Qt::Key_Right : Qt::Key_Left))
        return activate(m_marked);
    if (const int target = partByKey(m_layout, m_marked, key); target >= 0)
        return target == m_marked ? bringIntoView(target) : mark(target);
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return activate(m_marked);
    case Qt::Key_Space:
        if (!shown)
            return activate(m_marked);
        Q_EMIT largePreviewToggled(shown->id);
        return;
    case Qt::Key_F2:
        if (shown && shown->canRename)
            return rename(shown->id);
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (shown && shown->canRemove) {
            Q_EMIT removeRequested(shown->id);
            return;
        }
        // Elsewhere the key removes a layer: on a design that cannot be removed it does nothing.
        if (shown)
            return;
        break;
    default:
        break;
    }
    event->ignore();
}

// The first design, else the first part; -1 without any.
int TemplateGallery::startOfKeys() const
{
    const QList<GalleryPart>& parts = m_layout.parts;
    const auto first = std::ranges::find(parts, GalleryPart::Kind::tile, &GalleryPart::kind);
    if (first != parts.end())
        return int(first - parts.begin());
    return parts.isEmpty() ? -1 : 0;
}

void TemplateGallery::mark(int part)
{
    const int before = std::exchange(m_marked, part);
    updatePart(before);
    m_showsMark = true;
    updatePart(part);
    tellMarked();
    bringIntoView(part);
    const GalleryTile* shown = markedTile();
    rest(shown ? shown->id : QUuid(), false);
}

void TemplateGallery::tellMarked()
{
    if (m_marked >= 0)
        tellPart(this, QAccessible::Focus, m_marked);
}

void TemplateGallery::bringIntoView(int part)
{
    const QRect box = m_layout.parts[part].whole.adjusted(0, -viewMargin, 0, viewMargin);
    QScrollBar* bar = verticalScrollBar();
    if (box.bottom() >= bar->value() + viewport()->height())
        bar->setValue(box.bottom() + 1 - viewport()->height());
    if (box.top() < bar->value())
        bar->setValue(box.top());
}

void TemplateGallery::scrollToTop()
{
    verticalScrollBar()->setValue(0);
}

void TemplateGallery::focusInEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason &&
        event->reason() != Qt::ShortcutFocusReason)
        return;
    // The first time the keyboard comes, it is on the first design.
    if (m_marked <= 0)
        m_marked = startOfKeys();
    if (m_marked >= 0)
        mark(m_marked);
}

void TemplateGallery::focusOutEvent(QFocusEvent* event)
{
    leave();
    // The mark stays while a menu or another window has the focus.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    m_showsMark = false;
    updatePart(m_marked);
}

void TemplateGallery::rename(QUuid id)
{
    endRename(RenameEnd::kept);
    const int part = partOf(id);
    if (part < 0)
        return;
    leave();
    m_focusBefore = QApplication::focusWidget();
    m_renamed = id;
    m_marked = part;
    bringIntoView(part);
    m_name = new LineField(u"Nombre de la plantilla"_s, {}, Icon::none, viewport());
    m_name->setShown(tile(part)->name);
    placeName();
    // m_name emits edited() as soon as it loses the focus. The queued `finish` runs after that.
    connect(m_name, &LineField::edited, this,
            [this](const QString& name) { Q_EMIT renamed(m_renamed, name); });
    connect(m_name, &LineField::abandoned, this, [this] { endRename(RenameEnd::abandoned); });
    const auto finish = [this, name = m_name] {
        if (name == m_name)
            endRename(RenameEnd::kept);
    };
    connect(m_name, &LineField::editingFinished, this, finish, Qt::QueuedConnection);
    m_name->show();
    m_name->setFocus(Qt::OtherFocusReason);
    m_name->selectAll();
}

// Lays m_name over the caption, and makes it wider than a caption that is too narrow for typing.
void TemplateGallery::placeName()
{
    const int part = m_name ? partOf(m_renamed) : -1;
    if (part < 0)
        return;
    const QRect caption =
        captionOf(m_layout.parts[part]).translated(0, -verticalScrollBar()->value());
    const int across =
        std::min(viewport()->width(), std::max(caption.width(), narrowestGalleryName));
    m_name->setGeometry(std::min(caption.left(), viewport()->width() - across), caption.top(),
                        across, m_name->height());
}

void TemplateGallery::endRename(RenameEnd end)
{
    LineField* name = std::exchange(m_name, nullptr);
    if (!name)
        return;
    const QUuid id = m_renamed;
    name->hide();
    name->deleteLater();
    viewport()->update();
    // Restores the focus after Enter or Esc, which leave no widget focused. After a click
    // elsewhere, the clicked widget keeps the focus.
    if (m_focusBefore && !QApplication::focusWidget())
        m_focusBefore->setFocus(m_focusBefore == this ? Qt::ShortcutFocusReason
                                                      : Qt::OtherFocusReason);
    Q_EMIT renameEnded(id, end);
}

QString TemplateGallery::accessibleText(int part) const
{
    if (part < 0 || part >= m_layout.parts.size())
        return {};
    const GalleryPart& named = m_layout.parts[part];
    const GallerySection& section = m_sections[named.section];
    switch (named.kind) {
    case GalleryPart::Kind::heading: {
        QStringList said{section.title};
        if (!section.tiles.isEmpty() && section.look == GalleryLook::usual)
            said.append(QString::number(section.tiles.size()));
        for (const QString& more : {section.badge, section.state}) {
            if (!more.isEmpty())
                said.append(more);
        }
        return said.join(u", "_s);
    }
    case GalleryPart::Kind::random:
        return u"Otra al azar"_s;
    case GalleryPart::Kind::refresh:
        return u"Comprobar ahora: %1"_s.arg(section.title);
    case GalleryPart::Kind::sectionMenu:
        return u"Más acciones de %1"_s.arg(section.title);
    case GalleryPart::Kind::note:
        return section.note;
    case GalleryPart::Kind::tile:
        break;
    }
    const GalleryTile& shown = section.tiles[named.tile];
    QString said = shown.name;
    if (isApplied(shown.id))
        said += u", aplicada"_s;
    else if (shown.id == m_previewed)
        said += u", vista previa"_s;
    if (shown.isFavourite)
        said += u", favorita"_s;
    if (!shown.missingFont.isEmpty())
        said += u", falta %1"_s.arg(shown.missingFont);
    return u"%1. %2, %3 de %4"_s.arg(said, section.title, QString::number(named.tile + 1),
                                     QString::number(section.tiles.size()));
}
