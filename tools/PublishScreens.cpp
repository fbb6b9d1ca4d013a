#include "tools/PublishScreens.h"

#include "app/publish/HistoryPage.h"
#include "app/publish/PostStrip.h"
#include "app/publish/PublishSheet.h"
#include "app/publish/PublishTexts.h"
#include "app/window/MainWindow.h"
#include "canvas/ExportCanvasRenderer.h"
#include "studio/StudioSession.h"
#include "tools/WindowPictures.h"

#include <QBuffer>

using namespace Qt::StringLiterals;

namespace {

const QString caption =
    u"Hay fines de semana que se recuerdan por lo que no hiciste. En octubre, los Picos se quedan "
    "en silencio: hayedos encendidos, leña preparada y un sendero que sale desde la puerta. Ven en "
    "pareja o con toda la familia, perro incluido.\n\n#PicosDeEuropa #CasaRural #Otoño "
    "#EscapadaConPerro #Liébana #Hayedo #Chimenea"_s;

class PublishScreens {
public:
    explicit PublishScreens(const PublishStage& stage)
        : m_stage(stage), m_session(stage.session), m_sheet(&stage.window)
    {
        QObject::connect(m_sheet.strip(), &PostStrip::picturesWanted, &m_sheet,
                         [this] { drawStrip(); });
        QObject::connect(&m_sheet, &PublishSheet::previewWanted, &m_sheet,
                         [this] { drawPreview(); });
    }

    bool takeAll()
    {
        m_session.setFormat(SocialFormat::carouselPortrait);
        m_shown = usual(4);
        m_sheet.setHistory(history());
        m_sheet.present();
        bool reached = takeNetworks() & takeChecks() & takeSending();
        reached &= takePlaces();
        m_sheet.setPage(PublishSheet::Page::history);
        reached &= take(u"publish-history"_s);
        m_sheet.setHistory({});
        reached &= take(u"publish-history-empty"_s);
        m_sheet.setPage(PublishSheet::Page::publish);
        m_sheet.dismiss();
        return reached;
    }

private:
    bool take(const QString& name)
    {
        m_sheet.setShown(m_shown);
        drawStrip();
        drawPreview();
        return m_stage.pictures.take(name);
    }

    PublishShown usual(qsizetype images) const
    {
        PublishShown shown{.batchSize = m_session.batch().items.size(),
                           .format = m_session.batch().format,
                           .balance = 4280,
                           .site = u"Moltiva Web"_s};
        for (const PublicationItem& item : m_session.batch().items) {
            if (shown.images.size() < images)
                shown.images.append({.id = item.id, .name = item.filename()});
        }
        shown.images.last().isPaid = true;
        const qint64 cost = 50 * (shown.images.size() - 1);
        shown.networks = {{.network = SocialPublishNetwork::instagram,
                           .state = ConnectionState::connected,
                           .account = u"casaliebana"_s,
                           .cost = cost},
                          {.network = SocialPublishNetwork::facebook,
                           .state = ConnectionState::connected,
                           .account = u"Casa Liébana"_s,
                           .cost = cost},
                          {.network = SocialPublishNetwork::linkedIn,
                           .state = ConnectionState::absent,
                           .cost = cost}};
        shown.paid = PublishTexts::paidNote(1, shown.images.size());
        shown.caption = {.text = caption,
                         .guide = row(shown.network).longestCaption,
                         .origin = PublishTexts::origin(shown.images.first().name, 1),
                         .hasChoices = true};
        shown.report = {.sentence = u"2 red(es) conectada(s). Puedes publicar o conectar otra "
                                    "cuenta."_s,
                        .cost = PublishTexts::cost(shown.network, cost, shown.balance),
                        .checks = {{}, 10}};
        return shown;
    }

    bool takeNetworks()
    {
        bool reached = take(u"publish-ready"_s);
        const PublishShown ready = m_shown;
        m_shown.report = {.kind = StatusKind::working,
                          .sentence = u"Consultando conexiones de Instagram, Facebook y "
                                      "LinkedIn..."_s};
        for (NetworkShown& network : m_shown.networks)
            network = {.network = network.network, .state = ConnectionState::asking};
        reached &= take(u"publish-asking"_s);
        m_shown = ready;
        m_shown.network = SocialPublishNetwork::facebook;
        m_shown.caption.guide = row(m_shown.network).longestCaption;
        m_shown.networks[0].state = ConnectionState::pending;
        reached &= take(u"publish-facebook"_s);
        m_shown.network = SocialPublishNetwork::linkedIn;
        m_shown.networks[0].state = ConnectionState::unknown;
        reached &= take(u"publish-linkedin-absent"_s);
        m_shown.network = SocialPublishNetwork::instagram;
        m_shown.networks[0].state = ConnectionState::pending;
        m_shown.report.sentence =
            u"El publicador de Instagram todavía no está activado en el servidor de Moltiva."_s;
        m_shown.report.kind = StatusKind::warning;
        reached &= take(u"publish-pending"_s);
        m_shown = ready;
        return reached;
    }

    bool takeChecks()
    {
        const PublishShown ready = m_shown;
        m_shown.report.checks = {
            {{.kind = PublishCheckKind::placeholder,
              .sentence = u"Imagen 2: el CTA sigue siendo el de ejemplo."_s,
              .item = m_shown.images[1].id,
              .link = u"Ver imagen 2"_s},
             {.kind = PublishCheckKind::contrast,
              .sentence = u"Imagen 3. Título: contraste bajo (3,4; lo mínimo es 4,5)."_s,
              .item = m_shown.images[2].id,
              .link = u"Ver imagen 3"_s},
             {.kind = PublishCheckKind::published,
              .sentence = u"Ya se publicó en este destino el 12 nov."_s,
              .link = u"Ver en el historial"_s},
             {.kind = PublishCheckKind::manyHashtags,
              .isWarning = false,
              .sentence = u"7 hashtags. Con 5 o menos suele ir mejor."_s}},
            7};
        m_shown.images[1].hasWarning = m_shown.images[2].hasWarning = true;
        bool reached = take(u"publish-checks"_s);
        m_shown.report.isChecking = true;
        reached &= take(u"publish-checking"_s);
        m_shown.report.isChecking = false;
        m_shown.isConfirming = true;
        m_shown.report.kind = StatusKind::warning;
        m_shown.report.sentence = u"Ya se publicó en este destino el 12 nov. Pulsa otra vez para "
                                  "publicarlo de nuevo."_s;
        reached &= take(u"publish-again"_s);
        m_shown = ready;
        m_shown.caption.text = caption.repeated(12);
        m_shown.report.checks = {{{.kind = PublishCheckKind::captionLength,
                                   .sentence = u"El texto tiene más de 2200 caracteres."_s,
                                   .link = u"Ver el texto"_s}},
                                 9};
        reached &= take(u"publish-long"_s);
        m_shown = usual(12);
        for (PublishImage& image : m_shown.images.last(2))
            image.isSent = false;
        m_shown.report.sentence = u"Instagram permite 10 imagen(es). Se publicarán las primeras 10 "
                                  "seleccionadas."_s;
        m_shown.report.cost = PublishTexts::cost(m_shown.network, 500, 120);
        m_shown.report.isShort = true;
        m_shown.balance = 120;
        reached &= take(u"publish-many"_s);
        m_shown = ready;
        for (PublishImage& image : m_shown.images)
            image.isPaid = true;
        for (NetworkShown& network : m_shown.networks)
            network.cost = 0;
        m_shown.paid = PublishTexts::paidNote(4, 4);
        m_shown.report.cost = PublishTexts::cost(m_shown.network, 0, m_shown.balance);
        reached &= take(u"publish-paid"_s);
        m_shown = ready;
        return reached;
    }

    bool takeSending()
    {
        const PublishShown ready = m_shown;
        m_shown.isPublishing = true;
        m_shown.report = {.kind = StatusKind::working,
                          .sentence = u"Enviando 4 imagen(es) a Instagram. Coste: 150 "
                                      "créditos..."_s,
                          .sending =
                              SendingShown{.amount = PublishTexts::amount(4'130'000, 12'400'000),
                                           .fraction = 0.33}};
        bool reached = take(u"publish-sending"_s);
        m_shown = ready;
        m_shown.report = {.kind = StatusKind::done,
                          .sentence = u"Publicación enviada a Instagram. Coste: 150 créditos."_s,
                          .isPublished = true,
                          .hasPage = true};
        reached &= take(u"publish-published"_s);
        m_shown.report = {.kind = StatusKind::error,
                          .sentence = u"El servidor ha tardado demasiado en responder. Puede que "
                                      "se haya publicado."_s,
                          .cost = ready.report.cost,
                          .checks = {{}, 10}};
        reached &= take(u"publish-unknown"_s);
        m_shown = ready;
        return reached;
    }

    bool takePlaces()
    {
        bool reached = true;
        for (const SocialFormat format : {SocialFormat::storyReel, SocialFormat::horizontal}) {
            m_session.setFormat(format);
            m_shown = usual(4);
            if (format == SocialFormat::storyReel) {
                m_shown.placement = SocialPublishPlacement::story;
                m_shown.caption.isUnused = true;
            }
            reached &= take(format == SocialFormat::storyReel ? u"publish-story"_s
                                                              : u"publish-horizontal"_s);
        }
        m_session.setFormat(SocialFormat::carouselPortrait);
        m_shown = usual(1);
        m_shown.caption.text.clear();
        m_shown.caption.origin.clear();
        m_shown.paid.clear();
        return reached & take(u"publish-one"_s);
    }

    QImage drawn(QUuid id, QSize pixels) const
    {
        const PublicationItems& items = m_session.batch().items;
        const auto item = std::ranges::find(items, id, &PublicationItem::id);
        if (item == items.end() || pixels.isEmpty())
            return {};
        return ExportCanvasRenderer::bitmap(*item, pixels, designSize(m_session.batch().format))
            .value_or(QImage());
    }
    void drawStrip()
    {
        for (const QUuid id : m_sheet.strip()->seen())
            m_sheet.strip()->setPicture(id, drawn(id, m_sheet.strip()->pictureSize()));
    }
    void drawPreview()
    {
        m_sheet.setPreview(m_sheet.previewed(),
                           drawn(m_sheet.previewed(), m_sheet.previewPixels()));
    }

    QByteArray encoded(int image) const
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        const PublicationItems& items = m_session.batch().items;
        drawn(items[image % items.size()].id, {72, 90}).save(&buffer, "PNG");
        return bytes;
    }

    QList<PublishHistoryEntry> history() const
    {
        const auto entry = [&](SocialPublishNetwork network, SocialPublishPlacement placement,
                               const QString& date, const QString& line, QList<int> images) {
            PublishHistoryEntry made{.id = QUuid::createUuid(),
                                     .network = network,
                                     .title = PublishTexts::place(network, placement),
                                     .date = date,
                                     .line = line,
                                     .searched = line,
                                     .hasPage = true};
            for (const int image : images.first(std::min<qsizetype>(3, images.size())))
                made.pictures.append(encoded(image));
            made.more = images.size() - made.pictures.size();
            return made;
        };
        using enum SocialPublishNetwork;
        constexpr auto feed = SocialPublishPlacement::feed;
        QList<PublishHistoryEntry> entries{
            entry(instagram, feed, u"12 nov, 18:04"_s, u"Cierra el portátil: bastan dos noches."_s,
                  {3, 4, 5}),
            entry(facebook, feed, u"12 nov, 18:06"_s, u"Cierra el portátil: bastan dos noches."_s,
                  {3, 4, 5}),
            entry(instagram, SocialPublishPlacement::story, u"6 nov, 9:30"_s, {}, {6}),
            entry(linkedIn, feed, u"28 oct, 11:15"_s, u"De la huerta al plato, en octubre."_s,
                  {7, 0}),
            entry(instagram, feed, u"21 oct, 19:40"_s, u"Un valle entero para ti."_s, {1, 2, 0, 3}),
        };
        entries[2].isUnknown = true;
        entries[2].hasPage = false;
        return entries;
    }

    const PublishStage m_stage;
    StudioSession& m_session;
    PublishSheet m_sheet;
    PublishShown m_shown;
};

}    // namespace

bool takePublishScreens(const PublishStage& stage)
{
    return PublishScreens(stage).takeAll();
}
