#pragma once
#include <QFont>
#include <QHash>
#include <QStringList>

#include <functional>

struct FontFace {
    QString name;          // of the face alone, "Semi Bold Italic"
    QString storedName;    // "Inter Semi Bold Italic"
    bool operator==(const FontFace&) const = default;
};

// The installed fonts as a person looks for them. Asks the system at the first question.
class FontCatalog {
public:
    // Without families that are only a face of another, such as "Inter Black" beside "Inter".
    const QStringList& families();
    // From thin to black, upright before slanted, without the regular one: its family stands for
    // it.
    const QList<FontFace>& faces(const QString& family);

private:
    QStringList m_families;
    QHash<QString, QList<FontFace>> m_faces;
};

// `stylesOf` gives the styles of a family.
QStringList foldFamilies(const QStringList& families,
                         const std::function<QStringList(const QString&)>& stylesOf);

// Is it drawn as itself?
bool isInstalled(const QString& storedName);
// As texts in it are drawn.
QFont fontOfStored(const QString& storedName, int pixels);
