#include "app/publish/HistoryPage.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Button.h"
#include "app/controls/EmptyNote.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/LineField.h"
#include "app/publish/MenuButton.h"
#include "app/publish/PublishTexts.h"
#include "model/PlainText.h"

#include <QBuffer>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QImageReader>
#include <QMenu>
#include <QScrollArea>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr int historyRow = 68, historySide = 14, historyTile = 36, historyGap = 8;
constexpr QSize historyPicture(36, 45);
constexpr int pictureGap = 4, mostPictures = 3, moreRoom = 30;
constexpr qsizetype entriesAtOnce = 30;
const QString allNetworks = u"Todas las redes"_s;

// A stored picture; null unless it is of the kind and size that the records have.
QImage storedPicture(QByteArray encoded)
{
    constexpr QSize largest(62, 78);
    QBuffer buffer(&encoded);
    QImageReader reader(&buffer, "webp");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    const bool isSmall = size.isValid() && size.boundedTo(largest) == size;
    return isSmall ? reader.read() : QImage();
}

}    // namespace

class HistoryRow : public QWidget {
public:
    HistoryRow(const PublishHistoryEntry& entry, const QList<QImage>& pictures)
        : m_entry(entry), m_pictures(pictures),
          copyLink(new IconButton(Icon::link, u"Copiar enlace"_s, 32, this)),
          open(new PushButton(Icon::openOutside, u"Abrir"_s, ButtonKind::neutral, ButtonSize::small,
                              this))
    {
        setAccessibleRole(this, QAccessible::Grouping);
        setFixedHeight(historyRow);
        const QString told = entry.isUnknown ? u"Puede que se haya publicado."_s : entry.line;
        setAccessibleName(u"%1, %2. %3"_s.arg(entry.title, entry.date, told));
        open->setAccessibleName(u"%1: %2"_s.arg(open->text(), accessibleName()));
        showCopied(false);
        copyLink->setVisible(entry.hasPage);
        open->setVisible(entry.hasPage);
    }
    QUuid id() const { return m_entry.id; }
    void showCopied(bool isCopied)    // whether the link is on the clipboard
    {
        const QString meaning = isCopied ? u"Enlace copiado"_s : u"Copiar enlace"_s;
        copyLink->setMeaning(isCopied ? Icon::check : Icon::link,
                             u"%1: %2"_s.arg(meaning, accessibleName()));
        copyLink->setToolTip(meaning);
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::ToolTip || m_entry.searched.isEmpty())
            return QWidget::event(event);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           plainToolTip(m_entry.searched), this);
        return true;
    }
    void resizeEvent(QResizeEvent*) override
    {
        const QSize button = open->sizeHint();
        open->setGeometry(
            QRect(QPoint(width() - historySide - button.width(), (height() - button.height()) / 2),
                  button));
        copyLink->move(open->x() - 8 - copyLink->width(), (height() - copyLink->height()) / 2);
    }
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::card, theme.card);
        strokeRounded(painter, rect(), Radius::card, theme.line);
        const QRectF tile(historySide, (height() - historyTile) / 2.0, historyTile, historyTile);
        fillRounded(painter, tile, 10, theme.control);
        paintIcon(painter, PublishTexts::icon(m_entry.network), tile, 20, theme.text2);
        double left = tile.right() + 12;
        paintPictures(painter, left);
        left += mostPictures * (historyPicture.width() + pictureGap) + moreRoom + 8;
        const double right = (m_entry.hasPage ? copyLink->x() : width() - double(historySide)) - 8;
        const QRectF line(left, height() / 2.0 - 18, right - left, 18);
        paintText(painter, line, Qt::AlignLeft, Type::heading, theme.text, m_entry.title);
        const double title = std::ceil(textWidth(Type::heading, m_entry.title)) + 8;
        paintText(painter, line.adjusted(title, 0, 0, 0), Qt::AlignLeft, Type::small, theme.text3,
                  m_entry.date);
        QRectF below(left, height() / 2.0 + 2, right - left, 16);
        if (m_entry.isUnknown) {
            paintIcon(painter, Icon::alert, QRectF(left, below.top(), 14, 16), 14, theme.warn);
            paintText(painter, below.adjusted(18, 0, 0, 0), Qt::AlignLeft, Type::small, theme.warn,
                      u"Puede que se haya publicado."_s);
        } else {
            paintText(painter, below, Qt::AlignLeft, Type::small, theme.text2, m_entry.line);
        }
    }

private:
    void paintPictures(QPainter& painter, double left)
    {
        const Theme& theme = themeOf(this);
        QRectF box(QPointF(left, (height() - historyPicture.height()) / 2.0),
                   QSizeF(historyPicture));
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        for (const QImage& picture : std::as_const(m_pictures)) {
            // Cuts what does not fit the box: all boxes have the same shape.
            QSizeF part = box.size().scaled(picture.size(), Qt::KeepAspectRatio);
            QRectF source(QPointF(), part);
            source.moveCenter(QRectF(picture.rect()).center());
            if (picture.isNull())
                fillRounded(painter, box, 4, theme.empty);
            else
                painter.drawImage(box, picture, source);
            box.translate(historyPicture.width() + pictureGap, 0);
        }
        if (m_entry.more > 0) {
            const QRectF chip(box.left(), (height() - 20) / 2.0, moreRoom - 4, 20);
            fillRounded(painter, chip, Radius::chip, theme.control);
            paintText(painter, chip, Qt::AlignHCenter, Type::caption, theme.text2,
                      u"+%1"_s.arg(m_entry.more));
        }
    }

    PublishHistoryEntry m_entry;
    QList<QImage> m_pictures;

public:
    IconButton* copyLink;
    PushButton* open;
};

HistoryPage::HistoryPage(QWidget* parent)
    : QWidget(parent), m_most(entriesAtOnce),
      m_search(
          new LineField(u"Buscar en el historial"_s, u"Buscar en el historial"_s, Icon::search)),
      m_networks(new MenuButton(allNetworks, MenuButton::Look::field)), m_list(new QVBoxLayout),
      m_more(new PushButton(Icon::none, u"Mostrar más"_s, ButtonKind::link, ButtonSize::small)),
      m_empty(new EmptyNote(Icon::history, u"Aún no hay publicaciones"_s,
                            u"Aquí quedará lo que publiques con esta cuenta."_s)),
      m_nothing(new EmptyNote(Icon::search, u"Nada coincide con la búsqueda"_s,
                              u"Prueba con otra palabra o con todas las redes."_s))
{
    auto* filters = new QHBoxLayout;
    filters->setContentsMargins(4, 4, 16, 0);
    filters->setSpacing(Space::small);
    filters->addWidget(m_search, 1);
    filters->addWidget(m_networks);
    auto* page = new QWidget;
    m_list->setContentsMargins(4, 4, 4, 4);
    m_list->setSpacing(historyGap);
    auto* pageRows = new QVBoxLayout(page);
    pageRows->setContentsMargins(0, 0, 0, 0);
    pageRows->addLayout(m_list);
    pageRows->addWidget(m_more, 0, Qt::AlignHCenter);
    pageRows->addStretch(1);
    m_area = scrolled(page);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(Space::small);
    rows->addLayout(filters);
    rows->addWidget(m_area, 1);
    rows->addWidget(m_empty, 1);
    rows->addWidget(m_nothing, 1);
    connect(m_search, &QLineEdit::textChanged, this, [this] {
        m_most = entriesAtOnce;
        list();
    });
    connect(m_more, &PushButton::clicked, this, [this] {
        m_most += entriesAtOnce;
        list();
    });
    connect(m_networks, &MenuButton::menuWanted, this, [this](QMenu* menu) {
        const auto add = [&](const QString& text, std::optional<SocialPublishNetwork> network) {
            QAction* action = menu->addAction(text);
            action->setCheckable(true);
            action->setChecked(network == m_network);
            connect(action, &QAction::triggered, this, [this, network] { choose(network); });
        };
        add(allNetworks, {});
        for (const auto& network : Vocabulary<SocialPublishNetwork>::rows)
            add(network.title.toString(), network.value);
    });
    list();
}

void HistoryPage::setEntries(const QList<PublishHistoryEntry>& entries)
{
    if (entries == m_entries)
        return;
    m_entries = entries;
    m_pictures.clear();
    list();
}

const QList<QImage>& HistoryPage::picturesOf(const PublishHistoryEntry& entry)
{
    const auto known = m_pictures.constFind(entry.id);
    if (known != m_pictures.cend())
        return *known;
    QList<QImage> pictures;
    for (const QByteArray& encoded : entry.pictures.mid(0, mostPictures))
        pictures.append(storedPicture(encoded));
    return *m_pictures.insert(entry.id, pictures);
}

void HistoryPage::choose(std::optional<SocialPublishNetwork> network)
{
    m_network = network;
    m_networks->setShown(network ? row(*network).title.toString() : allNetworks);
    m_most = entriesAtOnce;
    list();
}

QList<PublishHistoryEntry> HistoryPage::found() const
{
    const QString word = m_search->text().trimmed();
    QList<PublishHistoryEntry> entries;
    for (const PublishHistoryEntry& entry : m_entries) {
        const bool isOfNetwork = !m_network || entry.network == *m_network;
        if (isOfNetwork && (entry.title + u' ' + entry.date + u' ' + entry.searched)
                               .contains(word, Qt::CaseInsensitive))
            entries.append(entry);
    }
    return entries;
}

void HistoryPage::list()
{
    for (HistoryRow* shown : std::as_const(m_rows)) {
        m_list->removeWidget(shown);
        shown->hide();
        shown->deleteLater();    // its button may be what called this
    }
    m_rows.clear();
    const QList<PublishHistoryEntry> entries = found();
    QWidget* before = m_networks;
    for (const PublishHistoryEntry& entry :
         entries.first(std::min<qsizetype>(m_most, entries.size()))) {
        auto* shown = new HistoryRow(entry, picturesOf(entry));
        m_list->addWidget(shown);
        m_rows.append(shown);
        connect(shown->open, &PushButton::clicked, this,
                [this, id = entry.id] { Q_EMIT pageRequested(id); });
        connect(shown->copyLink, &IconButton::clicked, this,
                [this, id = entry.id] { Q_EMIT linkCopyRequested(id); });
        setTabOrder(before, shown->copyLink);
        setTabOrder(shown->copyLink, shown->open);
        before = shown->open;
    }
    setTabOrder(before, m_more);
    m_more->setVisible(entries.size() > m_most);
    m_area->setVisible(!entries.isEmpty());
    m_empty->setVisible(m_entries.isEmpty());
    m_nothing->setVisible(entries.isEmpty() && !m_entries.isEmpty());
    m_search->setEnabled(!m_entries.isEmpty());
    m_networks->setEnabled(!m_entries.isEmpty());
}

void HistoryPage::tellCopied(QUuid entry)
{
    for (HistoryRow* shown : std::as_const(m_rows))
        shown->showCopied(shown->id() == entry);
}

QList<QWidget*> HistoryPage::focusOrder() const
{
    return {m_search, m_networks, m_more};
}
