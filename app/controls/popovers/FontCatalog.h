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
    // Without families that are only a face of another, such as "Inter Black" beside "Inter"; those
    // of symbols and mathematics last.
    const QStringList& families();
    // All that are installed, from thin to black, upright before slanted.
    const QList<FontFace>& faces(const QString& family);
    // The stored name of its regular face, or of the one drawn for the family where it has none.
    QString usualFace(const QString& family);

private:
    QStringList m_families;
    QHash<QString, QList<FontFace>> m_faces;
};

// `stylesOf` gives the styles of a family.
QStringList foldFamilies(const QStringList& families,
                         const std::function<QStringList(const QString&)>& stylesOf);

bool isForWords(const QString& family);    // not for symbols or formulas
// The full name of the face that stands for a stored name, "Bebas Neue Book" for "Bebas Neue".
QString drawnFace(const QString& storedName);
// Is it drawn as itself?
bool isInstalled(const QString& storedName);
// As texts in it are drawn.
QFont fontOfStored(const QString& storedName, int pixels);
