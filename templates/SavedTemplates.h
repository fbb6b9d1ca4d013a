#pragma once

#include "templates/BuiltInTemplateLibrary.h"
#include "templates/NamedList.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <memory>

class PhotoCache;
class PreferencesStore;

// The templates and styles that the user has saved. Every change is stored at once. Lives on the
// interface thread.
class SavedTemplates : public QObject {
    Q_OBJECT
public:
    // `preferences` must outlive this object.
    SavedTemplates(PreferencesStore& preferences, std::shared_ptr<PhotoCache> photos,
                   QObject* parent = nullptr);

    const NamedList<VisualTemplate>& templates() const { return m_templates; }
    const NamedList<DesignTemplate>& styles() const { return m_styles; }
    bool isStored() const { return m_isStored; }    // whether the last change is stored

    // Saves the arrangement of an item as a template with an unused name. The preview is drawn
    // later, on a worker.
    QUuid saveTemplate(const PublicationItem& item, SocialFormat format);
    // Replaces the arrangement of a template, keeping its name.
    void updateTemplate(QUuid id, const PublicationItem& item, SocialFormat format);
    // Adds a template that was read from a file. Adds nothing and returns a null id if an equal
    // template, apart from ids, is saved already.
    QUuid addTemplate(VisualTemplate added);
    void renameTemplate(QUuid id, const QString& name);
    void removeTemplate(QUuid id);
    void callBackTemplate();

    QUuid saveStyle(const TextLayerDesign& style);
    void updateStyle(QUuid id, const TextLayerDesign& style);
    void renameStyle(QUuid id, const QString& name);
    void removeStyle(QUuid id);
    void callBackStyle();

Q_SIGNALS:
    void templatesChanged();
    void stylesChanged();
    // The change stays in memory; the next change tries to store it again.
    void storingFailed();

private:
    void storeTemplates();
    void storeStyles();
    static QCoro::Task<> drawPreview(QPointer<SavedTemplates> self, QUuid id, PublicationItem item,
                                     SocialFormat format, std::shared_ptr<PhotoCache> photos);

    PreferencesStore& m_preferences;
    std::shared_ptr<PhotoCache> m_photos;
    NamedList<VisualTemplate> m_templates;
    NamedList<DesignTemplate> m_styles;
    bool m_isStored = true;
};
