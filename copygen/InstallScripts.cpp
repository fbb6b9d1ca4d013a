#include "copygen/InstallScripts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

QString resourceText(const QString& name)
{
    QFile file(u":/copygen/install/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString quotedList(const QStringList& texts)
{
    QStringList quoted;
    for (const QString& text : texts)
        quoted.append(shellQuoted(text));
    return u'(' + quoted.join(u' ') + u')';
}

// Assignments before the text of a script.
class ScriptHead {
public:
    void set(const QString& name, const QString& value) { setRaw(name, shellQuoted(value)); }
    void set(const QString& name, const QStringList& values) { setRaw(name, quotedList(values)); }
    // The variables NAME_URL, NAME_BYTES and NAME_SHA256.
    void set(const QString& name, const PinnedFile& file)
    {
        set(name + u"_URL"_s, file.url);
        set(name + u"_BYTES"_s, QString::number(file.bytes));
        set(name + u"_SHA256"_s, file.sha256);
    }

    const QString& text() const { return m_text; }

private:
    void setRaw(const QString& name, const QString& value)
    {
        m_text += name + u'=' + value + u'\n';
    }

    QString m_text = u"set -euo pipefail\n"_s;
};

}    // namespace

QString shellQuoted(const QString& text)
{
    QString quoted(u'"');
    for (const QChar c : text) {
        if (u"\\\"$`"_s.contains(c))
            quoted += u'\\';
        quoted += c;
    }
    return quoted + u'"';
}

QStringList defaultPythons()
{
    return {u"/opt/homebrew/opt/python@3.12/bin/python3.12"_s,
            u"/opt/homebrew/bin/python3.12"_s,
            u"/opt/homebrew/opt/python@3.11/bin/python3.11"_s,
            u"/opt/homebrew/bin/python3.11"_s,
            u"/usr/local/bin/python3"_s,
            u"/usr/local/bin/python3.11"_s,
            u"/usr/local/bin/python3.12"_s,
            u"/opt/homebrew/bin/python3"_s,
            u"/usr/bin/python3"_s};
}

QString mlxInstallScript(const LocalAIInstallation& installation, const QStringList& pythons)
{
    ScriptHead head;
    head.set(u"PROGRESS_FILE"_s, installation.gemmaProgressFile());
    head.set(u"GEMMA_DIRECTORY"_s, installation.gemmaDirectory());
    head.set(u"CACHE_DIRECTORY"_s, installation.gemmaCacheDirectory());
    head.set(u"MODEL_DIRECTORY"_s, installation.gemmaModelDirectory());
    head.set(u"ENVIRONMENT_DIRECTORY"_s, installation.gemmaEnvironmentDirectory());
    head.set(u"REPOSITORY"_s, LocalAIInstallation::gemmaRepository.toString());
    head.set(u"PYTHON_CANDIDATES"_s, pythons);
    head.set(u"PATCH_RUNTIME"_s, resourceText(u"patch_runtime.py"_s));
    head.set(u"DOWNLOAD_MODEL"_s, resourceText(u"download_model.py"_s));
    return head.text() + resourceText(u"mlx.sh"_s);
}

QStringList defaultFetch()
{
    return {QCoreApplication::applicationFilePath(), u"local"_s, u"fetch"_s};
}

QString llamaInstallScript(const LocalAIInstallation& installation, const LlamaPins& pins,
                           const QStringList& fetch)
{
    const QDir models(installation.gemmaModelDirectory());
    const QDir engine(installation.engineDirectory());
    ScriptHead head;
    head.set(u"PROGRESS_FILE"_s, installation.gemmaProgressFile());
    head.set(u"GEMMA_DIRECTORY"_s, installation.gemmaDirectory());
    head.set(u"MODEL_DIRECTORY"_s, installation.gemmaModelDirectory());
    head.set(u"ENGINE_DIRECTORY"_s, installation.engineDirectory());
    head.set(u"ENGINE_PROGRAM"_s, engine.filePath(u"llama-mtmd-cli"_s));
    head.set(u"PATH_PROGRAM"_s, llamaProgramInPath());    // a login shell may have another PATH
    head.set(u"CONFIGURED_PROGRAM"_s, pins.program);
    head.set(u"ENGINE"_s, pins.engine);
    head.set(u"MODEL"_s, pins.model);
    head.set(u"MODEL_FILE"_s, models.filePath(pins.model.fileName()));
    head.set(u"PROJECTOR"_s, pins.projector);
    head.set(u"PROJECTOR_FILE"_s, models.filePath(pins.projector.fileName()));
    head.set(u"FETCH"_s, fetch);
    return head.text() + resourceText(u"llama.sh"_s);
}
