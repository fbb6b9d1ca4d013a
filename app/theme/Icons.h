#pragma once
#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <array>

class QPainter;
class QRectF;

enum class Icon {
    none,
    importImages,
    importFolder,
    undo,
    redo,
    exportCurrent,
    exportAll,
    ratio916,
    ratio169,
    ratio45,
    ratio11,
    objective,
    modeLocal,
    modeCloud,
    generate,
    selectAll,
    discard,
    slotTitle,
    slotSubtitle,
    slotTagline,
    slotCallToAction,
    caption,
    visible,
    hidden,
    alignLeft,
    alignCenter,
    alignRight,
    alignJustify,
    placeLeft,
    placeCenterHorizontal,
    placeRight,
    placeTop,
    placeCenterVertical,
    placeBottom,
    copyStyle,
    pasteStyle,
    saveTemplate,
    shapes,
    shapeRectangle,
    shapeCircle,
    shapeTriangle,
    shapeLine,
    templates,
    star,
    starFilled,
    random,
    pack,
    severalImages,
    search,
    unfold,
    fold,
    check,
    done,
    queued,
    info,
    alert,
    previous,
    next,
    fitFill,
    fitInside,
    zoomOut,
    zoomIn,
    centerPhoto,
    safeZone,
    close,
    more,
    account,
    signIn,
    createAccount,
    mail,
    lock,
    globe,
    settings,
    credits,
    storage,
    purchases,
    preferences,
    appearance,
    keyboard,
    openFolder,
    updates,
    localEngine,
    openOutside,
    refresh,
    signOut,
    coin,
    publish,
    history,
    copy,
    link,
    networkInstagram,
    networkFacebook,
    networkLinkedIn
};
struct IconRow {
    Icon icon;
    QStringView file;    // name of a file in resources/icons, without its suffix
};
inline constexpr std::array icons{
    IconRow{Icon::none, u""},
    IconRow{Icon::importImages, u"import-images"},
    IconRow{Icon::importFolder, u"import-folder"},
    IconRow{Icon::undo, u"undo"},
    IconRow{Icon::redo, u"redo"},
    IconRow{Icon::exportCurrent, u"export-current"},
    IconRow{Icon::exportAll, u"export-all"},
    IconRow{Icon::ratio916, u"ratio-9-16"},
    IconRow{Icon::ratio169, u"ratio-16-9"},
    IconRow{Icon::ratio45, u"ratio-4-5"},
    IconRow{Icon::ratio11, u"ratio-1-1"},
    IconRow{Icon::objective, u"objective"},
    IconRow{Icon::modeLocal, u"mode-local"},
    IconRow{Icon::modeCloud, u"mode-cloud"},
    IconRow{Icon::generate, u"generate"},
    IconRow{Icon::selectAll, u"select-all"},
    IconRow{Icon::discard, u"discard"},
    IconRow{Icon::slotTitle, u"slot-title"},
    IconRow{Icon::slotSubtitle, u"slot-subtitle"},
    IconRow{Icon::slotTagline, u"slot-tagline"},
    IconRow{Icon::slotCallToAction, u"slot-call-to-action"},
    IconRow{Icon::caption, u"caption"},
    IconRow{Icon::visible, u"visible"},
    IconRow{Icon::hidden, u"hidden"},
    IconRow{Icon::alignLeft, u"align-left"},
    IconRow{Icon::alignCenter, u"align-center"},
    IconRow{Icon::alignRight, u"align-right"},
    IconRow{Icon::alignJustify, u"align-justify"},
    IconRow{Icon::placeLeft, u"place-left"},
    IconRow{Icon::placeCenterHorizontal, u"place-center-horizontal"},
    IconRow{Icon::placeRight, u"place-right"},
    IconRow{Icon::placeTop, u"place-top"},
    IconRow{Icon::placeCenterVertical, u"place-center-vertical"},
    IconRow{Icon::placeBottom, u"place-bottom"},
    IconRow{Icon::copyStyle, u"copy-style"},
    IconRow{Icon::pasteStyle, u"paste-style"},
    IconRow{Icon::saveTemplate, u"save-template"},
    IconRow{Icon::shapes, u"shapes"},
    IconRow{Icon::shapeRectangle, u"shape-rectangle"},
    IconRow{Icon::shapeCircle, u"shape-circle"},
    IconRow{Icon::shapeTriangle, u"shape-triangle"},
    IconRow{Icon::shapeLine, u"shape-line"},
    IconRow{Icon::templates, u"templates"},
    IconRow{Icon::star, u"star"},
    IconRow{Icon::starFilled, u"star-filled"},
    IconRow{Icon::random, u"random"},
    IconRow{Icon::pack, u"pack"},
    IconRow{Icon::severalImages, u"several-images"},
    IconRow{Icon::search, u"search"},
    IconRow{Icon::unfold, u"unfold"},
    IconRow{Icon::fold, u"fold"},
    IconRow{Icon::check, u"check"},
    IconRow{Icon::done, u"done"},
    IconRow{Icon::queued, u"queued"},
    IconRow{Icon::info, u"info"},
    IconRow{Icon::alert, u"alert"},
    IconRow{Icon::previous, u"previous"},
    IconRow{Icon::next, u"next"},
    IconRow{Icon::fitFill, u"fit-fill"},
    IconRow{Icon::fitInside, u"fit-inside"},
    IconRow{Icon::zoomOut, u"zoom-out"},
    IconRow{Icon::zoomIn, u"zoom-in"},
    IconRow{Icon::centerPhoto, u"center-photo"},
    IconRow{Icon::safeZone, u"safe-zone"},
    IconRow{Icon::close, u"close"},
    IconRow{Icon::more, u"more"},
    IconRow{Icon::account, u"account"},
    IconRow{Icon::signIn, u"sign-in"},
    IconRow{Icon::createAccount, u"create-account"},
    IconRow{Icon::mail, u"mail"},
    IconRow{Icon::lock, u"lock"},
    IconRow{Icon::globe, u"globe"},
    IconRow{Icon::settings, u"settings"},
    IconRow{Icon::credits, u"credits"},
    IconRow{Icon::storage, u"storage"},
    IconRow{Icon::purchases, u"purchases"},
    IconRow{Icon::preferences, u"preferences"},
    IconRow{Icon::appearance, u"appearance"},
    IconRow{Icon::keyboard, u"keyboard"},
    IconRow{Icon::openFolder, u"open-folder"},
    IconRow{Icon::updates, u"updates"},
    IconRow{Icon::localEngine, u"local-engine"},
    IconRow{Icon::openOutside, u"open-outside"},
    IconRow{Icon::refresh, u"refresh"},
    IconRow{Icon::signOut, u"sign-out"},
    IconRow{Icon::coin, u"coin"},
    IconRow{Icon::publish, u"publish"},
    IconRow{Icon::history, u"history"},
    IconRow{Icon::copy, u"copy"},
    IconRow{Icon::link, u"link"},
    IconRow{Icon::networkInstagram, u"network-instagram"},
    IconRow{Icon::networkFacebook, u"network-facebook"},
    IconRow{Icon::networkLinkedIn, u"network-linkedin"},
};
constexpr const IconRow& row(Icon icon)
{
    return icons[std::size_t(icon)];
}
static_assert(std::ranges::all_of(icons, [](const auto& r) { return &row(r.icon) == &r; }));

// The icon with this file name; Icon::none if there is none. The tables of model/, such as
// ImageFitModeRow, name their icons by file.
constexpr Icon iconNamed(QStringView file)
{
    const auto found = std::ranges::find(icons, file, &IconRow::file);
    return found == icons.end() ? Icon::none : found->icon;
}

// `size` is in logical pixels; `ratio`: device pixels per logical pixel. Below size 20, lines are
// as thick as at size 20.
QPixmap iconPixmap(Icon icon, int size, const QColor& color, qreal ratio);
// Paints the icon centred in `box`, on whole device pixels.
void paintIcon(QPainter& painter, Icon icon, const QRectF& box, int size, const QColor& color);
// A black icon for a menu entry. StudioStyle paints it in a colour of the theme.
QIcon menuIcon(Icon icon);
// `name` as a part of a menu entry: doubles every ampersand, because a single one marks a shortcut
// key.
QString inMenu(const QString& name);
