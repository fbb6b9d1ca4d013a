#pragma once

#include <QString>
#include <QStringList>

// Makes a folder and its missing parents. The destructor removes the folders that this object has
// made, if they are still empty.
class OutputFolder {
public:
    explicit OutputFolder(const QString& path);
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    bool isThere() const { return m_isThere; }

    // Whether the folder exists or can probably be made, and is writable. Makes nothing.
    static bool canBeMade(const QString& path);

private:
    QStringList m_made;    // folders that did not exist, the innermost first
    bool m_isThere;
};
