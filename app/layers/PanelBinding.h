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

// Shows the session's current item in the side panel, and turns the user's input there into edits.
class PanelBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    PanelBinding(StudioSession& session, SidePanel* panel,
                 const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences,
                 const BatchBinding& batch);

    void show();
    // Opens the text or the shapes tab, whichever shows `layer`. Does nothing while the templates
    // tab is open.
    void follow(QUuid layer);
    // Opens the text tab and gives the slot's editor the focus.
    void edit(CopySlot slot);
    void editCaption();    // opens the text tab, too
    void editSelected();
    void proposeAnother();    // for the selected text

Q_SIGNALS:
    void leaveRequested();    // the focus should go back to the canvas

private:
    void connectTexts();
    void connectShapes();
    ColorOffers colors();
    QString proposalRefusal() const;
    std::optional<CopySlot> selectedSlot() const;
    std::optional<double> sizeLimit(const PublicationItem& item) const;
    void remember(const QColor& color);
    static QCoro::Task<> lookAtPhoto(QPointer<PanelBinding> self, QString path, QByteArray digest,
                                     std::shared_ptr<PhotoCache> photos);

    StudioSession& m_session;
    SidePanel* m_panel;
    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    const BatchBinding& m_batchBinding;    // has the warnings about the texts
    // By photo path; the list is empty until a worker has found the colours.
    QHash<QString, QList<QColor>> m_photoColors;
    QList<QColor> m_recentColors;
};
