#pragma once

#include <QByteArray>
#include <QString>

// Sets the user's runtime folder for this process and the processes it starts, until destroyed.
class RuntimeFolder {
public:
    explicit RuntimeFolder(const QString& path) { qputenv(variable, path.toLocal8Bit()); }
    ~RuntimeFolder()
    {
        if (m_before.isNull())
            qunsetenv(variable);
        else
            qputenv(variable, m_before);
    }
    RuntimeFolder(const RuntimeFolder&) = delete;
    RuntimeFolder& operator=(const RuntimeFolder&) = delete;

private:
    static constexpr const char* variable = "XDG_RUNTIME_DIR";
    const QByteArray m_before = qgetenv(variable);
};
