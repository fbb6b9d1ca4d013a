#pragma once

#include "platform/Completion.h"
#include "studio/copy/LocalCopyWriter.h"

#include <QList>

// A local writer that answers when the test says so.
class ScriptedWriter {
public:
    struct Call {
        QUrl photo;
        QString objective;
        SocialFormat format = SocialFormat::storyReel;
        GeneratedCopy answer;
        Completion answered;
        bool isOver = false;
    };

    LocalCopyWriter functions()
    {
        return {
            .write =
                [this](QUrl photo, QString objective, SocialFormat format, std::stop_token stop) {
                    const auto call = std::make_shared<Call>();
                    call->photo = photo;
                    call->objective = objective;
                    call->format = format;
                    calls.append(call);
                    return answerOf(call, stop);
                },
            .isMissingAnswer =
                [](const GeneratedCopy& copy) { return copy.title == missing().title; },
            .whyNotReady = [this] { return notReady; },
            .engineName = [this] { return engineName; }};
    }
    bool isWriting() const { return !calls.isEmpty() && !calls.last()->isOver; }
    void answer(const GeneratedCopy& copy)
    {
        calls.last()->answer = copy;
        calls.last()->answered.complete();
    }

    static GeneratedCopy copy(const QString& name)
    {
        return {QStringLiteral("Título ") + name,  QStringLiteral("Subtítulo ") + name,
                QStringLiteral("Párrafo ") + name, QStringLiteral("CTA ") + name,
                QStringLiteral("Pie ") + name,     QStringLiteral("Notas")};
    }
    static GeneratedCopy missing()
    {
        return {QStringLiteral("Gemma no respondió"),
                QStringLiteral("No se ha podido iniciar Gemma 4 E2B local desde la app."),
                QStringLiteral("Revisar IA local"),
                QStringLiteral("Reintentar"),
                QStringLiteral("Pie sin respuesta"),
                QString()};
    }

    QList<std::shared_ptr<Call>> calls;
    QString notReady;
    QString engineName = QStringLiteral("Gemma 4 E2B");

private:
    static QCoro::Task<GeneratedCopy> answerOf(std::shared_ptr<Call> call, std::stop_token stop)
    {
        const std::stop_callback stopped(stop, [call] { call->answered.complete(); });
        co_await call->answered.wait();
        call->isOver = true;
        GeneratedCopy answer = call->answer;
        co_return std::move(answer);
    }
};
