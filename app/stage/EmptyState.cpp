#include "app/stage/EmptyState.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/KeyHint.h"
#include "app/controls/Spinner.h"
#include "app/stage/SampleCards.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels from the top of the block of cards, texts and buttons. The block is vertically centred in
// the dashed frame, above the recent places.
constexpr int cardsMiddle = 104, cardsHeight = 250, titleTop = 250, sentenceTop = 290,
              buttonsTop = 333, hintsTop = 398, wholeBlock = 414;
constexpr int placesTitle = 18, placesGap = 10, placesHeight = placesTitle + placesGap + 28,
              placesSide = 40, placesBottom = 28, leastAboveBlock = 12;
constexpr int emptySpinnerSide = 32, spinnerTop = 196;
constexpr int frameSide = 24, frameTop = 14, frameBottom = 12;

// A folder or file imported before.
class PlaceChip : public Control {
public:
    PlaceChip(const RecentPlace& place, QWidget* parent) : Control(parent), m_place(place)
    {
        setAccessibleName(place.name());
        setToolTip(plainToolTip(place.isLost ? place.path + u"\nNo se encuentra"_qs : place.path));
        setAccessibleDescription(toolTip());
        setProperty("focusRadius", Radius::field);
    }
    const QString& path() const { return m_place.path; }
    QSize sizeHint() const override
    {
        const int text = qCeil(textWidth(Type::small, m_place.name()));
        return {std::min(text, widestText) + besideText, chipHeight};
    }
    // Narrower than sizeHint(), the chip elides the name.
    QSize minimumSizeHint() const override
    {
        return {std::min(sizeHint().width(), narrowestText + besideText), chipHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::field, mixed(theme.raised, theme.hover, hovered()));
        const QColor ink = m_place.isLost ? theme.text3 : theme.text2;
        paintIcon(painter, m_place.isFolder ? Icon::openFolder : Icon::importImages,
                  QRectF(padding, 0, icon, height()), icon, m_place.isLost ? theme.dis : ink);
        const int left = padding + icon + gap;
        QRectF line(left, 0, width() - left - padding, height());
        paintText(painter, line, Qt::AlignLeft, Type::small, ink, m_place.name(), Qt::ElideMiddle);
        if (m_place.isLost) {
            const double text = std::min(textWidth(Type::small, m_place.name()), line.width());
            painter.fillRect(QRectF(line.left(), height() / 2.0, text, 1), ink);
        }
    }

private:
    static constexpr int chipHeight = 28, padding = 10, icon = 16, gap = 7,
                         besideText = 2 * padding + icon + gap, widestText = 180,
                         narrowestText = 60;
    const RecentPlace m_place;
};

}    // namespace

// The recent places in one line below their title. Names that are too long together are narrowed;
// what does not fit even so is hidden.
class PlaceChips : public QWidget {
public:
    // `before`: what comes before the chips in the order of Tab.
    PlaceChips(QWidget* before, EmptyState* state)
        : QWidget(state), m_before(before), m_state(state)
    {
        setAccessibleRole(this, QAccessible::Grouping);
        setAccessibleName(u"Carpetas y archivos recientes"_qs);
    }
    void setPlaces(const QList<RecentPlace>& places)
    {
        if (places == m_places)
            return;
        m_places = places;
        QString focused;    // path of the chip that has the focus
        for (const PlaceChip* chip : std::as_const(m_chips)) {
            if (chip == window()->focusWidget())
                focused = chip->path();
        }
        // Moves the focus away before its chip is hidden: Qt would move it to another part of the
        // window.
        if (!focused.isEmpty())
            m_before->setFocus(Qt::OtherFocusReason);
        for (PlaceChip* chip : std::exchange(m_chips, {})) {
            chip->hide();
            chip->deleteLater();    // it may be the one that was pressed just now
        }
        QWidget* before = m_before;
        for (const RecentPlace& each : places) {
            auto* chip = new PlaceChip(each, this);
            m_chips.append(chip);
            setTabOrder(before, chip);
            before = chip;
            connect(chip, &Control::clicked, m_state,
                    [state = m_state, path = each.path] { Q_EMIT state->placeRequested(path); });
        }
        arrange();
        for (PlaceChip* chip : std::as_const(m_chips)) {
            if (chip->path() == focused && !chip->isHidden())
                chip->setFocus(Qt::OtherFocusReason);
        }
    }
    bool isEmpty() const { return m_chips.isEmpty(); }

protected:
    void resizeEvent(QResizeEvent*) override { arrange(); }
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintText(painter, QRectF(0, 0, width(), placesTitle), Qt::AlignLeft, Type::heading,
                  themeOf(this).text, accessibleName());
    }

private:
    void arrange()
    {
        const int widest = widestChip();
        int left = 0;
        for (PlaceChip* chip : std::as_const(m_chips)) {
            const QSize size = chip->sizeHint()
                                   .boundedTo({widest, chip->sizeHint().height()})
                                   .expandedTo(chip->minimumSizeHint());
            chip->setGeometry(QRect(QPoint(left, placesTitle + placesGap), size));
            chip->setVisible(left + size.width() <= width());
            left += size.width() + Space::small;
        }
    }

    // The width that chips may have at most so that all fit.
    int widestChip() const
    {
        QList<int> widths;
        for (const PlaceChip* chip : m_chips)
            widths.append(chip->sizeHint().width());
        std::ranges::sort(widths);
        int room = width() - Space::small * std::max(0, int(widths.size()) - 1);
        // Narrow chips leave what they do not need to the wider ones.
        for (qsizetype i = 0; i < widths.size(); ++i) {
            const int share = room / int(widths.size() - i);
            if (widths[i] > share)
                return share;
            room -= widths[i];
        }
        return width();
    }

    QWidget* m_before;
    EmptyState* m_state;
    QList<RecentPlace> m_places;
    QList<PlaceChip*> m_chips;
};

EmptyState::EmptyState(QWidget* parent)
    : QWidget(parent), m_images(new PushButton(Icon::importImages, u"Importar imágenes"_qs,
                                               ButtonKind::primary, ButtonSize::large, this)),
      m_folder(new PushButton(Icon::importFolder, u"Importar carpeta"_qs, ButtonKind::raised,
                              ButtonSize::large, this)),
      m_hints(new KeyHints({{{u"Ctrl"_qs, u"O"_qs}, u"imágenes"_qs},
                            {{u"Ctrl"_qs, u"Mayús"_qs, u"O"_qs}, u"carpeta"_qs}},
                           this)),
      m_places(new PlaceChips(m_folder, this)), m_spinner(new Spinner(emptySpinnerSide, this))
{
    setAccessibleRole(this, QAccessible::Grouping);
    m_spinner->hide();
    m_places->hide();
    nameState();
    connect(m_images, &PushButton::clicked, this, &EmptyState::importImagesRequested);
    connect(m_folder, &PushButton::clicked, this, &EmptyState::importFolderRequested);
}

QList<QWidget*> EmptyState::focusOrder() const
{
    return {m_images, m_folder};
}

void EmptyState::takeFocus(Qt::FocusReason reason)
{
    if (m_import)
        setFocus(reason);
    else
        m_images->setFocus(reason);
}

void EmptyState::setImport(const std::optional<ImportShown>& import)
{
    if (import == m_import)
        return;
    // Moves the focus here before the button or chip that has it is hidden: Qt would move it to the
    // panel beside the stage.
    if (import && isAncestorOf(window()->focusWidget()))
        setFocus(Qt::OtherFocusReason);
    const bool wasImporting = std::exchange(m_import, import).has_value();
    for (QWidget* part : {static_cast<QWidget*>(m_images), static_cast<QWidget*>(m_folder),
                          static_cast<QWidget*>(m_hints)})
        part->setVisible(!import);
    m_spinner->setVisible(import.has_value());
    m_places->setVisible(showsPlaces());
    place();
    if (wasImporting && import)
        m_announcer.tellStep();
    else
        m_announcer.tellNow();
    if (!import && hasFocus())
        takeFocus(KeyboardFocus::reason());
    update();
}

void EmptyState::setPlaces(const QList<RecentPlace>& places)
{
    m_places->setPlaces(places);
    m_places->setVisible(showsPlaces());
    place();
    update();
}

bool EmptyState::showsPlaces() const
{
    return !m_import && !m_places->isEmpty();
}

// The cards give way to the recent places in a low window.
bool EmptyState::showsCards() const
{
    const int room = height() - frameTop - frameBottom - placesHeight - placesBottom;
    return !showsPlaces() || room >= wholeBlock + leastAboveBlock;
}

void EmptyState::nameState()
{
    setAccessibleName(m_import ? u"Importando tus fotos"_qs : u"Suelta aquí tus fotos"_qs);
    if (!m_import)
        setAccessibleDescription(
            u"También puedes soltar una carpeta entera. JPG, PNG, HEIC o TIFF."_qs);
    else if (m_import->total == 0)
        setAccessibleDescription(u"Buscando fotos…"_qs);
    else
        setAccessibleDescription(u"%1 de %2"_qs.arg(m_import->looked).arg(m_import->total));
}

int EmptyState::blockTop() const
{
    const int below = showsPlaces() ? placesHeight + placesBottom : 0;
    const int hidden = showsCards() ? 0 : cardsHeight;
    const int room = height() - frameTop - frameBottom - below;
    return frameTop + (room - (wholeBlock - hidden)) / 2 - hidden;
}

void EmptyState::resizeEvent(QResizeEvent*)
{
    place();
}

void EmptyState::place()
{
    m_places->setGeometry(frameSide + placesSide,
                          height() - frameBottom - placesBottom - placesHeight,
                          std::max(0, width() - 2 * (frameSide + placesSide)), placesHeight);
    const int top = blockTop();
    const QSize images = m_images->sizeHint();
    const QSize folder = m_folder->sizeHint();
    const int gap = 10;
    const int left = (width() - images.width() - gap - folder.width()) / 2;
    m_images->setGeometry(QRect(QPoint(left, top + buttonsTop), images));
    m_folder->setGeometry(QRect(QPoint(left + images.width() + gap, top + buttonsTop), folder));
    const QSize hints = m_hints->sizeHint();
    m_hints->setGeometry(QRect(QPoint((width() - hints.width()) / 2, top + hintsTop), hints));
    m_spinner->move((width() - emptySpinnerSide) / 2, top + spinnerTop);
}

void EmptyState::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.bg);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_import)
        paintInvitation(painter);
    const int top = blockTop();
    paintText(painter, QRectF(0, top + titleTop, width(), 30), Qt::AlignHCenter, Type::emptyTitle,
              theme.text, accessibleName());
    paintText(painter, QRectF(0, top + sentenceTop, width(), 20), Qt::AlignHCenter, Type::large,
              theme.text2, accessibleDescription());
}

void EmptyState::paintInvitation(QPainter& painter)
{
    const Theme& theme = themeOf(this);
    QPen dashes(mixed(theme.line2, theme.dis, 0.35), 1);
    dashes.setDashPattern({3, 3});
    painter.setPen(dashes);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(frameSide + 0.5, frameTop + 0.5,
                                                    -frameSide - 0.5, -frameBottom - 0.5),
                            Radius::sheet, Radius::sheet);
    if (showsCards())
        paintCards(painter, QPointF(width() / 2.0, blockTop() + cardsMiddle));
}

void EmptyState::paintCards(QPainter& painter, const QPointF& middle)
{
    const Theme& theme = themeOf(this);
    const double ratio = painter.device()->devicePixelRatioF();
    struct Placing {
        SampleCard card;
        QPointF offset;
        double turn;    // degrees
    };
    const std::array placings{
        Placing{SampleCard::valley, {-114, 14}, -6.5},
        Placing{SampleCard::sunset, {114, 14}, 6.5},
        Placing{SampleCard::mountain, {0, 0}, 0},
    };
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const Placing& placing : placings) {
        const SavedPainter saved(painter);
        painter.translate(middle + placing.offset);
        painter.rotate(placing.turn);
        const QSizeF size = sampleCardSize(placing.card);
        const QRectF box(QPointF(-size.width() / 2, -size.height() / 2), size);
        paintShadow(painter, box, {.offset = 12, .blur = 40, .color = theme.shadow});
        painter.drawPixmap(box.topLeft(), sampleCard(placing.card, ratio));
    }
}
