#pragma once

#include "templates/BuiltInTemplateLibrary.h"
#include "templates/NamedList.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <memory>

class PhotoCache;
class PreferencesStore;

// The templates and styles that the user has saved. Every change is stored at once; it lives on the
// interface thread.
class SavedTemplates : public QObject {
    Q_OBJECT
public:
    // The preferences outlive it.
    SavedTemplates(PreferencesStore& preferences, std::shared_ptr<PhotoCache> photos,
                   QObject* parent = nullptr);

    const NamedList<VisualTemplate>& templates() const { return m_templates; }
    const NamedList<DesignTemplate>& styles() const { return m_styles; }
    bool isStored() const { return m_isStored; }    // the last change is

    // The arrangement of an item, under a name of ours. Its preview follows in a moment.
    QUuid saveTemplate(const PublicationItem& item, SocialFormat format);
    // Another arrangement under the same name.
    void updateTemplate(QUuid id, const PublicationItem& item, SocialFormat format);
    // From a file. One that is here already is not added again: null.
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
    // What is here is kept, and stored with the next change.
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
