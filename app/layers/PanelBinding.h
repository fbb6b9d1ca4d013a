#pragma once
#include "model/CopySlot.h"

#include <QColor>
#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QUuid>

#include <memory>
#include <optional>

class BatchBinding;
class PhotoCache;
class PreferencesStore;
class SidePanel;
class StudioSession;
struct ColorOffers;
struct PhotoHandle;
struct PublicationItem;

// The side panel as a view of the session's current item.
class PanelBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    PanelBinding(StudioSession& session, SidePanel* panel,
                 const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences,
                 const BatchBinding& batch);

    void show();
    // Opens the tab of a layer that was selected on the canvas, unless the templates are open.
    void follow(QUuid layer);
    // Opens the text tab and gives the slot's editor the focus.
    void edit(CopySlot slot);
    void editSelected();

Q_SIGNALS:
    void leaveRequested();    // back to the canvas

private:
    void connectTexts();
    void connectShapes();
    ColorOffers colors();
    std::optional<double> sizeLimit(const PublicationItem& item) const;
    void remember(const QColor& color);
    static QCoro::Task<> lookAtPhoto(QPointer<PanelBinding> self, QString path, QByteArray digest,
                                     std::shared_ptr<PhotoCache> photos);

    StudioSession& m_session;
    SidePanel* m_panel;
    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    const BatchBinding& m_batchBinding;             // has the warnings about the texts
    QHash<QString, QList<QColor>> m_photoColors;    // by the photo's path; empty until found
    QList<QColor> m_recentColors;
};
