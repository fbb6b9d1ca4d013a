#pragma once

#include <QString>
#include <QStringList>

// The folder that files go to, made with those above it if missing. What it made and nobody put
// anything into goes with it.
class OutputFolder {
public:
    explicit OutputFolder(const QString& path);
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    bool isThere() const { return m_isThere; }

    // As far as can be told without making it.
    static bool canBeMade(const QString& path);

private:
    QStringList m_made;    // the innermost first
    bool m_isThere;
};
