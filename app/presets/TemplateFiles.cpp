#include "app/presets/TemplateFiles.h"

#include "platform/AtomicFile.h"
#include "platform/Workers.h"
#include "studio/StudioSession.h"

#include <QCoroFuture>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// Size in bytes, more than a usual preview takes. Larger previews are dropped, because each change
// of a template stores all templates with their previews.
constexpr qsizetype largestPreview = 1 << 20;

QString noMemory()
{
    return u"no hay memoria"_s;
}

}    // namespace

TemplateFiles::TemplateFiles(SavedTemplates& saved, QObject* parent)
    : QObject(parent), m_saved(saved)
{
}

void TemplateFiles::read(const QString& path, const PublicationItem& item)
{
    runReading(this, path, item);
}

QCoro::Task<> TemplateFiles::runReading(QPointer<TemplateFiles> self, QString path,
                                        PublicationItem item)
{
    QFuture<DefinitionFile> reading = runOnWorker([path]() -> DefinitionFile {
        try {
            return readDefinitionFile(path);
        } catch (const std::exception&) {
            return {std::nullopt, noMemory()};
        }
    });
    const DefinitionFile file = co_await reading;
    if (self)
        self->finishReading(file, path, item);
}

void TemplateFiles::finishReading(const DefinitionFile& file, const QString& path,
                                  const PublicationItem& item)
{
    if (!file.definition) {
        Q_EMIT told(u"No se puede importar «%1»: %2."_s.arg(QFileInfo(path).fileName(), file.error),
                    StatusKind::warning);
        return;
    }
    const SocialFormat format = file.definition->socialFormat();
    VisualTemplate made = file.definition->visualTemplate(item, format);
    made.order.reset();    // the file does not decide the order among the user's templates
    if (made.previewPNG && made.previewPNG->size() > largestPreview)
        made.previewPNG.reset();
    if (m_saved.addTemplate(made).isNull()) {
        Q_EMIT told(u"La plantilla «%1» ya está en Mis plantillas."_s.arg(made.name),
                    StatusKind::note);
        return;
    }
    Q_EMIT imported(made.name, format);
}

void TemplateFiles::write(const QString& path, const JSONVisualTemplateDefinition& definition)
{
    runWriting(this, path, definition.name, definitionBytes(definition));
}

QCoro::Task<> TemplateFiles::runWriting(QPointer<TemplateFiles> self, QString path, QString name,
                                        QByteArray bytes)
{
    QFuture<QString> writing = runOnWorker([path, bytes] {
        try {
            return writeAtomically(path, bytes);
        } catch (const std::exception&) {
            return noMemory();
        }
    });
    const QString failure = co_await writing;
    if (!self)
        co_return;
    if (failure.isEmpty()) {
        Q_EMIT self->told(
            u"Plantilla «%1» exportada como %2."_s.arg(name, QFileInfo(path).fileName()),
            StatusKind::done);
    } else {
        Q_EMIT self->told(u"No se pudo exportar la plantilla «%1»: %2."_s.arg(name, failure),
                          StatusKind::warning);
    }
}
