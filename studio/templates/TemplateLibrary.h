#pragma once

#include "studio/templates/LibraryMarks.h"
#include "studio/templates/SharedTemplates.h"
#include "templates/SavedTemplates.h"
#include "templates/TemplatePacks.h"

#include <QCoroTask>
#include <QHash>
#include <QPointer>

#include <variant>

enum class DesignOrigin { user, team, program, pack };

// A design as the gallery lists it.
struct LibraryDesign {
    QUuid id;    // unique in the library; that of the definition, unless an earlier section has it
    QString name;
    DesignOrigin origin = DesignOrigin::user;
    std::optional<SocialFormat> format;    // nothing: suits every format
    QStringList tags;                      // in lower case
    QString missingFont;    // the first font family that is not installed; empty: none
    QString fileName;       // in the catalogue of the team; empty for other origins
};

struct LibrarySection {
    QString key;    // "own", "team", "moltiva", "pack:" and the key of the pack
    DesignOrigin origin = DesignOrigin::user;
    QString title;
    QList<LibraryDesign> designs;
};

// All designs that can be applied: those of the user, of the team, of the program and of installed
// packs. Everything but the user's own is read on workers, from load() on. Lives on the interface
// thread.
class TemplateLibrary : public QObject {
    Q_OBJECT
public:
    // `saved`, `shared` and `preferences` outlive the library; `shared` is null where there is no
    // service. Packs are kept in `dataFolder`.
    TemplateLibrary(SavedTemplates& saved, SharedTemplates* shared, PreferencesStore& preferences,
                    const QString& dataFolder, QObject* parent = nullptr);

    // Starts reading the packs, at its first call. changed() follows.
    void load();
    bool isLoaded() const { return m_isLoaded; }

    // The sections with designs that suit `format`: of the user, the team, the program, then the
    // packs by name. Those of the user, the team (if there is a catalogue) and the program are
    // present even if they are empty.
    QList<LibrarySection> sections(SocialFormat format) const;
    const LibraryDesign* find(QUuid id) const;          // valid until the next changed()
    TemplateApplication application(QUuid id) const;    // empty for an unknown id
    // The design as a definition to be written to a file or shared; nothing for an unknown id.
    // `otherwise` is the format of a design that suits every format.
    std::optional<JSONVisualTemplateDefinition> definition(QUuid id, SocialFormat otherwise) const;

    JSONVisualTemplateDefinition definitionOf(const VisualTemplate& own,
                                              SocialFormat otherwise) const;

    // The designs whose name, tags and pack contain all words of `search`, with the tag (empty:
    // any), in the order of sections().
    QList<QUuid> found(const QString& search, const QString& tag, bool onlyFavourites,
                       SocialFormat format) const;
    QStringList tags(SocialFormat format) const;       // the most used first
    QList<QUuid> recent(SocialFormat format) const;    // at most five, newest first
    // Any design of `among`, or of all if `among` is empty, but `notThis`.
    std::optional<QUuid> anyOther(QUuid notThis, SocialFormat format,
                                  const QList<QUuid>& among = {}) const;

    bool isFavourite(QUuid id) const { return m_marks.isFavourite(id); }
    void setFavourite(QUuid id, bool favourite);
    void noteUsed(QUuid id);
    bool isFolded(const QString& sectionKey) const { return m_marks.isFolded(sectionKey); }
    void setFolded(const QString& sectionKey, bool folded)
    {
        m_marks.setFolded(sectionKey, folded);
    }

    // Installs a folder or a .zip file. A pack of the same name is replaced; callBackPack() brings
    // it back. told() says how it ended.
    QCoro::Task<> installPack(QString path);
    QCoro::Task<> removePack(QString sectionKey);
    QCoro::Task<> callBackPack();
    // The name of the pack that callBackPack() would bring back, also one that was removed in an
    // earlier run; empty if there is none.
    QString lastRemovedPack() const;
    // Writes all templates of the user to a .zip file.
    QCoro::Task<> exportOwn(QString path);

Q_SIGNALS:
    void changed();         // other designs, or other contents
    void marksChanged();    // favourites, and those used last
    void told(const QString& sentence, bool isWarning);

private:
    using Self = QPointer<TemplateLibrary>;
    struct Entry {
        LibraryDesign design;
        QUuid definitionId;
        QString folded;    // what a search looks at, from foldedForSearch()
        std::variant<VisualTemplate, JSONVisualTemplateDefinition> source;
    };
    struct Shelf {
        QString key;
        DesignOrigin origin = DesignOrigin::user;
        QString title;
        QList<Entry> entries;
    };
    struct Pack {
        TemplatePack pack;
        Shelf shelf;
    };
    struct Contents;
    struct Installation;

    static Entry entryOf(const VisualTemplate& own);
    static Shelf shelfOf(const QString& key, DesignOrigin origin, const QString& title,
                         const QList<PackDesign>& designs);
    static Pack packOf(const TemplatePack& pack);
    void readOwn();
    void readTeam();
    void arrange();
    void put(const Pack& pack);
    void keepRemoved(const TemplatePack& pack);
    const BuiltInTemplateLibrary& gallery() const;
    template <typename Visit>
    void visit(SocialFormat format, Visit visit) const;
    const Entry* entry(QUuid id) const;

    static QCoro::Task<> runLoading(Self self);
    static QCoro::Task<> runReadingTeam(Self self, int number, QList<PackDesign> designs);
    static QCoro::Task<> runInstalling(Self self, QString path);
    static QCoro::Task<> runRemoving(Self self, QString sectionKey);
    static QCoro::Task<> runCallingBack(Self self);
    static QCoro::Task<> runExporting(Self self, QString path);

    SavedTemplates& m_saved;
    SharedTemplates* m_shared;
    LibraryMarks m_marks;
    TemplatePacks m_disk;
    mutable std::optional<BuiltInTemplateLibrary> m_gallery;    // read by load() or its first use
    Shelf m_own, m_team, m_program;                             // with all their designs
    QList<Pack> m_packs;                                        // by name
    QList<TemplatePack> m_removed;                              // for callBackPack()
    bool m_isLoading = false, m_isLoaded = false;
    int m_teamNumber = 0;    // of the last reading of the catalogue
    // What that reading began with.
    QList<SharedDesign> m_teamRead;
    QSet<QUuid> m_withdrawn;
    bool m_hasTeam = false;
    // What sections() shows, for all formats, and where each design is in it.
    QList<Shelf> m_shelves;
    QHash<QUuid, std::pair<qsizetype, qsizetype>> m_places;
};
