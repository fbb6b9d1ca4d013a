#include "app/publish/PublishTexts.h"

#include "account/AccountTexts.h"
#include "model/PlainText.h"
#include "studio/publish/PublishSentences.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

QString withCost(const QString& text, std::optional<qint64> cost)
{
    return cost ? u"%1 (%2)"_s.arg(text, creditsText(*cost)) : text;
}

bool isSentBefore(const CheckedPost& checks)
{
    return std::ranges::any_of(checks.found, [](const PublishCheck& check) {
        return check.kind == PublishCheckKind::published;
    });
}

// Always with one decimal, so that a running figure keeps its length.
QString runningMegabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 1).replace(u'.', u',') + u" MB"_s;
}

}    // namespace

QString PublishTexts::selection(qsizetype selected, qsizetype batch)
{
    return u"%1 imagen(es) seleccionada(s) de %2"_s.arg(selected).arg(batch);
}

QString PublishTexts::action(const NetworkShown& network, SocialPublishPlacement placement)
{
    QString text = u"Publicar en %1"_s.arg(row(network.network).title);
    if (row(network.network).hasStories)
        text = placement == SocialPublishPlacement::story ? u"Publicar Story"_s
                                                          : u"Publicar en Feed"_s;
    return withCost(text, network.cost);
}

bool PublishTexts::canPublish(const PublishShown& shown)
{
    const NetworkShown* chosen = shown.chosen();
    return chosen && chosen->state == ConnectionState::connected && !shown.images.isEmpty();
}

QString PublishTexts::primary(const PublishShown& shown)
{
    if (shown.isPublishing)
        return u"Publicando..."_s;
    if (!canPublish(shown))
        return u"Publicar"_s;
    const NetworkShown& chosen = *shown.chosen();
    if (!shown.isConfirming)
        return action(chosen, shown.placement);
    return withCost(isSentBefore(shown.report.checks) ? u"Publicar otra vez"_s
                                                      : u"Publicar de todos modos"_s,
                    chosen.cost);
}

QString PublishTexts::state(ConnectionState state)
{
    switch (state) {
    case ConnectionState::asking:
        return u"Consultando…"_s;
    case ConnectionState::connected:
        return PublishSentences::connected.toString();
    case ConnectionState::pending:
        return PublishSentences::pending.toString();
    case ConnectionState::unknown:
    case ConnectionState::absent:
        break;
    }
    return PublishSentences::absent.toString();
}

QString PublishTexts::hint(const NetworkShown& network, const QString& site)
{
    switch (network.state) {
    case ConnectionState::asking:
        return {};
    case ConnectionState::connected:
        return u"Usará la cuenta conectada desde %1."_s.arg(site);
    case ConnectionState::absent:
        return u"Primero hay que conectar esta red en %1."_s.arg(site);
    case ConnectionState::pending:
        return u"Faltan las claves OAuth de esta red en el servidor de Moltiva."_s;
    case ConnectionState::unknown:
        break;
    }
    return connecting(site);
}

QString PublishTexts::account(const QString& displayName)
{
    constexpr qsizetype most = 80;
    const QString line = shownLine(displayName);
    return line.size() > most ? line.left(most - 1) + u'…' : line;
}

QString PublishTexts::connecting(const QString& site)
{
    return u"Abre %1 para conectar esta red."_s.arg(site);
}

QString PublishTexts::cost(SocialPublishNetwork network, std::optional<qint64> cost, qint64 balance)
{
    if (!cost)
        return {};
    if (*cost == 0)
        return u"Estas imágenes ya están pagadas. Publicar aquí no descontará créditos."_s;
    if (*cost > balance)
        return u"Necesitas %1 créditos para publicar estas imágenes."_s.arg(*cost);
    return u"Publicar las imágenes que se enviarán a %1 descontará %2 créditos."_s
        .arg(row(network).title)
        .arg(*cost);
}

QString PublishTexts::paidNote(qsizetype paid, qsizetype sent)
{
    if (paid <= 0)
        return {};
    if (paid >= sent)
        return sent == 1
                   ? u"Ya está pagada y no vuelve a descontar créditos."_s
                   : u"Las %1 ya están pagadas y no vuelven a descontar créditos."_s.arg(sent);
    const QString of = u"%1 de las %2 "_s.arg(paid).arg(sent);
    return of + (paid == 1 ? u"ya está pagada y no vuelve a descontar créditos."_s
                           : u"ya están pagadas y no vuelven a descontar créditos."_s);
}

QString PublishTexts::warnings(const CheckedPost& checks)
{
    const auto count = std::ranges::count(checks.found, true, &PublishCheck::isWarning);
    return count == 0 ? QString()
                      : counted(count, u"aviso antes de publicar", u"avisos antes de publicar");
}

QString PublishTexts::passed(const CheckedPost& checks)
{
    return counted(checks.passed, u"comprobación correcta", u"comprobaciones correctas");
}

QString PublishTexts::checking()
{
    return u"Comprobando las imágenes…"_s;
}

QString PublishTexts::origin(const QString& name, qsizetype position)
{
    return position > 0 ? u"De la imagen %1, %2"_s.arg(position).arg(name)
                        : u"De la imagen %1, que ya no está en el lote"_s.arg(name);
}

QString PublishTexts::place(SocialPublishNetwork network, SocialPublishPlacement placement)
{
    const QString title = row(network).title.toString();
    return row(network).hasStories ? u"%1 · %2"_s.arg(title, row(placement).title) : title;
}

QString PublishTexts::date(const QDateTime& local, const QDate& today)
{
    const bool isThisYear = local.date().year() == today.year();
    QString text = QLocale(QLocale::Spanish)
                       .toString(local, isThisYear ? u"d MMM, H:mm"_s : u"d MMM yyyy, H:mm"_s);
    return text.remove(u'.');    // some versions of the locale's data abbreviate months with one
}

QString PublishTexts::amount(qint64 sent, qint64 total)
{
    return u"%1 de %2"_s.arg(runningMegabytes(sent), runningMegabytes(total));
}

QString PublishTexts::kept(qsizetype posts)
{
    return counted(posts, u"publicación en esta cuenta", u"publicaciones en esta cuenta");
}

Icon PublishTexts::icon(SocialPublishNetwork network)
{
    static constexpr std::array ofNetworks{Icon::networkInstagram, Icon::networkFacebook,
                                           Icon::networkLinkedIn};
    static_assert(ofNetworks.size() == Vocabulary<SocialPublishNetwork>::rows.size());
    return ofNetworks[std::size_t(network)];
}
