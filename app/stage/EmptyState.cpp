#include "app/stage/EmptyState.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/KeyHint.h"
#include "app/controls/Spinner.h"
#include "app/stage/SampleCards.h"
#include "app/theme/KeyboardFocus.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels from the top of the block of cards, texts and buttons. The block is vertically centred in
// the dashed frame.
constexpr int cardsMiddle = 104, titleTop = 250, sentenceTop = 290, buttonsTop = 333,
              hintsTop = 398, blockHeight = 414;
constexpr int emptySpinnerSide = 32, spinnerTop = 196;
constexpr int frameSide = 24, frameTop = 14, frameBottom = 12;

}    // namespace

EmptyState::EmptyState(QWidget* parent)
    : QWidget(parent), m_images(new PushButton(Icon::importImages, u"Importar imágenes"_qs,
                                               ButtonKind::primary, ButtonSize::large, this)),
      m_folder(new PushButton(Icon::importFolder, u"Importar carpeta"_qs, ButtonKind::raised,
                              ButtonSize::large, this)),
      m_hints(new KeyHints({{{u"Ctrl"_qs, u"O"_qs}, u"imágenes"_qs},
                            {{u"Ctrl"_qs, u"Mayús"_qs, u"O"_qs}, u"carpeta"_qs}},
                           this)),
      m_spinner(new Spinner(emptySpinnerSide, this))
{
    setAccessibleRole(this, QAccessible::Grouping);
    m_spinner->hide();
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
    // Moves the focus here before the button that has it is hidden: Qt would move it to the panel
    // beside the stage.
    if (import && (m_images->hasFocus() || m_folder->hasFocus()))
        setFocus(Qt::OtherFocusReason);
    const bool wasImporting = std::exchange(m_import, import).has_value();
    for (QWidget* part : {static_cast<QWidget*>(m_images), static_cast<QWidget*>(m_folder),
                          static_cast<QWidget*>(m_hints)})
        part->setVisible(!import);
    m_spinner->setVisible(import.has_value());
    if (wasImporting && import)
        m_announcer.tellStep();
    else
        m_announcer.tellNow();
    if (!import && hasFocus())
        takeFocus(KeyboardFocus::reason());
    update();
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
    return frameTop + (height() - frameTop - frameBottom - blockHeight) / 2;
}

void EmptyState::resizeEvent(QResizeEvent*)
{
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
