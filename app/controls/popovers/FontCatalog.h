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

// The installed fonts, by family. Asks the system when it is first used.
class FontCatalog {
public:
    // Families that are only a face of another, such as "Inter Black" beside "Inter", are left out;
    // those of symbols and formulas come last.
    const QStringList& families();
    // All installed faces, from thin to black, upright before slanted.
    const QList<FontFace>& faces(const QString& family);
    // The stored name of the family's regular face; if it has none, of the face drawn for its name.
    QString usualFace(const QString& family);

private:
    QStringList m_families;
    QHash<QString, QList<FontFace>> m_faces;
};

// Removes families that are only a face of another, and sorts. `stylesOf` gives a family's styles.
QStringList foldFamilies(const QStringList& families,
                         const std::function<QStringList(const QString&)>& stylesOf);

bool isForWords(const QString& family);    // not for symbols or formulas
// The full name of the face that is drawn for a stored name, "Bebas Neue Book" for "Bebas Neue".
QString drawnFace(const QString& storedName);
// Whether texts in this font are drawn in it, and not in one that replaces a missing font.
bool isInstalled(const QString& storedName);
// The font in which texts with this stored name are drawn.
QFont fontOfStored(const QString& storedName, int pixels);
