#include "studio/TextTransfer.h"

#include "model/PlainText.h"
#include "platform/Workers.h"
#include "studio/StudioSession.h"
#include "studio/sheet/TextSheetFile.h"

#include <QCoroFuture>

#include <QFileInfo>

using namespace Qt::StringLiterals;

QString refusalOfTexts(const StudioSession& session)
{
    if (session.isImporting())
        return u"Espera a que termine la importación de imágenes para importar los textos."_s;
    if (session.batch().items.isEmpty())
        return u"Importa antes las imágenes: los textos van a las que nombra el archivo."_s;
    return {};
}

QCoro::Task<> importTexts(QPointer<StudioSession> session, QString path)
{
    if (const QString refusal = refusalOfTexts(*session); !refusal.isEmpty()) {
        session->setStatus(refusal, StatusTone::problem);
        co_return;
    }
    QFuture<TextSheet> reading = runOnWorker([path] { return readTextSheetFile(path); });
    TextSheet sheet;
    try {
        sheet = co_await reading;
    } catch (const std::exception& error) {
        sheet.error = QString::fromLocal8Bit(error.what());
    }
    if (!session)
        co_return;
    QString problem = refusalOfTexts(*session);    // an import of images may have begun meanwhile
    if (!sheet.error.isEmpty()) {
        problem = u"No se pudieron leer los textos de %1: %2."_s.arg(QFileInfo(path).fileName(),
                                                                     sheet.error);
    }
    if (problem.isEmpty())
        session->applyTexts(sheet);
    else
        session->setStatus(problem, StatusTone::problem);
}

QCoro::Task<> exportTexts(QPointer<StudioSession> session, QString path)
{
    const PublicationItems items = session->batch().items;
    if (items.isEmpty()) {
        session->setStatus(u"No hay imágenes de las que guardar textos."_s);
        co_return;
    }
    QFuture<QString> writing =
        runOnWorker([path, items] { return writeTextSheetFile(path, items); });
    QString failure;
    try {
        failure = co_await writing;
    } catch (const std::exception& error) {
        failure = QString::fromLocal8Bit(error.what());
    }
    if (!session)
        co_return;
    const QString name = QFileInfo(path).fileName();
    if (failure.isEmpty())
        session->setStatus(u"Textos de %1 guardados en %2."_s.arg(
                               counted(items.size(), u"imagen", u"imágenes"), name),
                           StatusTone::done);
    else
        session->setStatus(u"No se pudieron guardar los textos en %1 (%2)."_s.arg(name, failure),
                           StatusTone::problem);
}
