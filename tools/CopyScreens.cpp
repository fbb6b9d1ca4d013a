#include "tools/CopyScreens.h"

#include "app/batch/BatchColumn.h"
#include "app/copy/EngineRow.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/settings/LocalAIDetailPanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioShell.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"
#include "tests/support/ScriptedWriter.h"
#include "tools/WindowPictures.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

const QString gemma = u"Gemma 4 E2B"_s;
const QString downloaded = u"Descargando Gemma... 2,04 GB de 3,40 GB"_s;

struct NamedRow {
    QString name;
    EngineShown shown;
};

QList<NamedRow> engineRows()
{
    const QString longMessage =
        u"No se ha podido instalar Gemma: Proceso local fallido. Log: /tmp/moltiva-local-ai-x.log\n"
        "ERROR: Could not find a version that satisfies the requirement\n"_s;
    return {
        {u"absent"_s,
         {.look = EngineLook::absent,
          .name = gemma,
          .sentence = u"No instalado. Descarga: 3,40\u00a0GB."_s,
          .about = u"Modelo visual local. Requiere instalación inicial y varios GB libres."_s,
          .hasLicence = true}},
        {u"incomplete"_s,
         {.look = EngineLook::absent,
          .name = gemma,
          .sentence = u"Modelo incompleto: 2,04 GB descargados. Pulsa Instalar para continuar."_s,
          .about = u"Modelo visual local. Requiere instalación inicial y varios GB libres."_s,
          .hasLicence = true}},
        {u"configured"_s,
         {.look = EngineLook::ready,
          .name = u"gemma-3-12b-it"_s,
          .sentence = u"En 127.0.0.1:8080. 0 créditos."_s,
          .aside = u"última imagen: 9 s"_s}},
        {u"downloading"_s,
         {.look = EngineLook::installing,
          .name = gemma,
          .sentence = downloaded,
          .aside = u"quedan 4 min"_s,
          .canCancel = true,
          .progress = 0.6}},
        {u"elsewhere"_s,
         {.look = EngineLook::installing,
          .name = gemma,
          .sentence = downloaded,
          .aside = u"en otra ventana"_s,
          .progress = 0.6}},
        {u"failed"_s,
         {.look = EngineLook::failed,
          .name = gemma,
          .sentence = u"No hay espacio suficiente: hacen falta 4,5 GB libres para instalar Gemma 4 "
                      "E2B."_s}},
        {u"failed-log"_s,
         {.look = EngineLook::failed, .name = gemma, .sentence = longMessage.repeated(6)}},
    };
}

EngineShown readyRow()
{
    return {.look = EngineLook::ready,
            .name = gemma,
            .sentence = u"Instalado en este equipo. 0 créditos."_s,
            .aside = u"última imagen: 38 s"_s};
}

LocalAIShown installingPage()
{
    return {.presence = LocalAIPresence::installing,
            .name = gemma,
            .about = u"Modelo visual local. Requiere instalación inicial y varios GB libres."_s,
            .message = downloaded + u" · quedan 4 min"_s,
            .progress = 0.6,
            .stages = {u"Preparando entorno local"_s, u"Instalando dependencias de Gemma"_s,
                       u"Ajustando runtime de Gemma"_s, u"Calculando tamaño del modelo"_s,
                       u"Descargando Gemma"_s, u"Finalizando instalación"_s},
            .stage = u"Descargando Gemma"_s,
            .amount = u"2,04 GB de 3,40 GB"_s};
}

class CopyScreens {
public:
    explicit CopyScreens(const CopyStage& stage) : m_stage(stage), m_session(stage.session)
    {
        m_session.setLocalCopyWriter(m_writer.functions());
    }

    bool takeAll()
    {
        m_stage.window.shell()->sidePanel()->setTab(SideTab::text);
        m_session.setObjective(u"Llenar octubre con parejas y familias con perro"_s);
        m_session.selectSingleIndex(0);
        bool reached = true;
        for (const NamedRow& each : engineRows()) {
            row()->setShown(each.shown);
            reached &= take(u"copy-engine-"_s + each.name);
        }
        m_session.selectAll();
        m_session.setGenerationMode(CopyGenerationMode::cloud);
        reached &= take(u"copy-cloud"_s);
        m_session.setGenerationMode(CopyGenerationMode::local);
        return reached & takeRun() & takeSettings();
    }

private:
    EngineRow* row() { return m_stage.window.shell()->engineRow(); }
    bool take(const QString& name) { return m_stage.pictures.take(name); }

    // Takes a state of a run once no tile shows for a moment that its texts are new.
    bool takeRested(const QString& name)
    {
        const TileGrid* grid = m_stage.window.shell()->batchColumn()->grid();
        const bool isRested = WindowPictures::waitFor([grid] {
            return std::ranges::none_of(
                grid->tiles(), [](const Tile& tile) { return tile.state == TileState::generated; });
        });
        row()->setShown(readyRow());
        return isRested & take(name);
    }

    // Answers the image at turn and waits until the next one is.
    bool answer(const GeneratedCopy& copy)
    {
        const qsizetype before = m_writer.calls.size();
        m_writer.answer(copy);
        return WindowPictures::waitFor(
            [&] { return m_writer.calls.size() > before || !m_session.isAnalyzing(); });
    }
    GeneratedCopy copyFor(int image) const
    {
        return {
            u"Quédate al atardecer"_s,
            u"Desayunos largos frente a la montaña."_s,
            u"Nueve casas y una huerta"_s,
            u"Ver casas"_s,
            u"Hay valles que se cruzan y valles en los que uno se queda. Nueve casas y una huerta "
            "esperan en el %1. Reserva tu fin de semana de octubre y ven con quien quieras, "
            "también con tu perro: hay sitio, chimenea y camino de sobra para todos."_s.arg(image),
            u"Un valle con hayas y una montaña al fondo."_s};
    }

    // A run in which texts wait because there is something to redo, and one image without answer.
    bool takeRun()
    {
        m_session.setText(CopySlot::title, u"Un título propio"_s);
        m_session.copy().analyzeSelected();
        bool reached = WindowPictures::waitFor([this] { return m_writer.isWriting(); });
        for (int i = 0; i < 3; ++i)
            reached &= answer(copyFor(i + 1));
        reached &= answer(ScriptedWriter::missing());
        reached &= WindowPictures::waitFor([this] { return m_session.copy().waiting() == 0; });
        reached &= takeRested(u"copy-running"_s);
        m_session.setText(CopySlot::callToAction, u"Reserva"_s);
        m_session.undo();
        for (int i = 0; i < 3; ++i)
            reached &= answer(copyFor(i + 5));
        reached &= takeRested(u"copy-waiting"_s);
        while (m_session.isAnalyzing() && reached)
            reached = answer(m_writer.calls.size() == 9 ? ScriptedWriter::missing() : copyFor(9));
        reached &= takeRested(u"copy-done"_s);
        TextPanel* texts = m_stage.window.shell()->sidePanel()->textPanel();
        m_stage.window.activateWindow();
        texts->editCaption();
        reached &= take(u"copy-caption"_s);
        m_stage.window.setFocus();
        return reached;
    }

    bool takeSettings()
    {
        m_session.setAppSettingsPresented(true);
        auto* sheet = m_stage.window.findChild<AppSettingsWindow*>();
        if (!sheet)
            return false;
        sheet->setDestination(AppSettingsDestination::localAI);
        LocalAIDetailPanel* panel = sheet->localAIPanel();
        panel->setShown(installingPage());
        bool reached = take(u"copy-settings-installing"_s);
        LocalAIShown installed = installingPage();
        installed.presence = LocalAIPresence::installed;
        installed.status = readyRow().sentence;
        panel->setShown(installed);
        reached &= take(u"copy-settings-installed"_s);
        panel->askUninstall(u"3,6 GB"_s);
        reached &= take(u"copy-settings-question"_s);
        LocalAIShown absent = installed;
        absent.presence = LocalAIPresence::absent;
        absent.failure = engineRows()[5].shown.sentence;
        panel->setShown(absent);
        reached &= take(u"copy-settings-absent"_s);
        m_session.setAppSettingsPresented(false);
        return reached;
    }

    const CopyStage m_stage;
    StudioSession& m_session;
    ScriptedWriter m_writer;
};

}    // namespace

bool takeCopyScreens(const CopyStage& stage)
{
    CopyScreens screens(stage);
    const bool reached = screens.takeAll();
    stage.session.setLocalCopyWriter({});    // the scripted one goes
    return reached;
}
