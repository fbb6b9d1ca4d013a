#pragma once
#include <QFont>
#include <QHash>
#include <QStringList>

#include <functional>

struct FontFace {
    QString name;          // of the face alone, such as "Semi Bold Italic"
    QString storedName;    // such as "Inter Semi Bold Italic"
    bool operator==(const FontFace&) const = default;
};

// The installed fonts, by family. Each list is read from the system when it is first asked for.
class FontCatalog {
public:
    // Leaves out families that are only a face of another, such as "Inter Black" beside "Inter".
    // Families of symbols and formulas come last.
    const QStringList& families();
    // All installed faces of `family`, from thin to black; of equal weight, upright before slanted.
    const QList<FontFace>& faces(const QString& family);
    // The stored name of the regular face of `family`. If there is none, that of the face that is
    // drawn for a text whose font is only the family name.
    QString usualFace(const QString& family);

private:
    QStringList m_families;
    QHash<QString, QList<FontFace>> m_faces;
};

// Returns `families` sorted, without those that are only a face of another. `stylesOf` returns the
// styles of a family.
QStringList foldFamilies(const QStringList& families,
                         const std::function<QStringList(const QString&)>& stylesOf);

bool isForWords(const QString& family);    // false for fonts of symbols or formulas
// The full name of the face that is drawn for a stored name, such as "Bebas Neue Book" for "Bebas
// Neue".
QString drawnFace(const QString& storedName);
// The font that is drawn for a stored name, `pixels` high.
QFont fontOfStored(const QString& storedName, int pixels);
