#pragma once

#include <QString>
#include <QStringList>

// Makes a folder and its missing parents. The destructor removes those that it made and that are
// still empty.
class OutputFolder {
public:
    explicit OutputFolder(const QString& path);
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    bool isThere() const { return m_isThere; }

    // Whether making the folder looks possible; makes nothing.
    static bool canBeMade(const QString& path);

private:
    QStringList m_made;    // folders that did not exist, the innermost first
    bool m_isThere;
};
