#pragma once

#include "model/CopyGenerationMode.h"
#include "studio/Batch.h"
#include "studio/LayerEdits.h"
#include "studio/PhotoImport.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <memory>

// What a sentence in the status line tells.
enum class StatusTone { info, done, problem };

// The state of the main window and its commands. Lives on the interface thread; whoever shows it
// looks again after batchChanged(), and compares the items it knew: unchanged ones are equal and
// share their data.
class StudioSession : public QObject {
    Q_OBJECT
public:
    explicit StudioSession(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr);
    ~StudioSession() override;

    const Batch& batch() const { return m_batch; }
    QString status() const { return m_status; }
    StatusTone statusTone() const { return m_statusTone; }
    CopyGenerationMode generationMode() const { return m_generationMode; }
    // What an import has accepted so far; empty when none runs.
    const PhotoImport::Progress& importProgress() const { return m_importProgress; }
    bool isImporting() const { return m_import != nullptr; }

    // Photos and folders of photos become the new batch, once all were looked at.
    void load(const QList<QUrl>& filesAndFolders);
    // The batch stays as it was.
    void stopImport();

    void setFormat(SocialFormat format);
    void setObjective(const QString& objective);
    void setGenerationMode(CopyGenerationMode mode);

    void selectItem(int index, Qt::KeyboardModifiers modifiers);
    void selectSingleIndex(int index);
    void selectAll();
    void selectLayer(QUuid layer);    // of the current item; another one is ignored
    void previousItem();
    void nextItem();
    QList<int> selectedIndicesForBatch() const;
    void removeCurrentItem();
    // The same for any item; whatever else is current stays so.
    void removeItem(QUuid id);

    // Replaces the current item; an item of another id is refused.
    void setCurrentItem(const PublicationItem& item);
    void applyLayerChangeToSelectedItems(const TextLayer& layer, LayerEdits::AlongFlags along = {});
    void applyShapeChangeToSelectedItems(const ShapeLayer& shape);
    void syncCurrentCanvasEditsToSelectedItems(QUuid movedLayer);
    void addShape(ShapeKind kind);
    void deleteSelectedLayer();

Q_SIGNALS:
    void batchChanged();
    void statusChanged();
    void generationModeChanged();
    void importChanged();    // began, went on or ended

private:
    template <typename Change>
    void change(Change apply);
    void setStatus(const QString& status, StatusTone tone = StatusTone::info);
    static QCoro::Task<> runImport(QPointer<StudioSession> session, QList<QUrl> urls,
                                   std::shared_ptr<PhotoCache> photos,
                                   std::shared_ptr<PhotoImport::Control> control);
    void finishImport(const std::optional<QList<PublicationItem>>& items);

    std::shared_ptr<PhotoCache> m_photos;
    Batch m_batch;
    QString m_status;
    StatusTone m_statusTone = StatusTone::info;
    CopyGenerationMode m_generationMode = CopyGenerationMode::local;
    std::shared_ptr<PhotoImport::Control> m_import;    // of the import under way
    PhotoImport::Progress m_importProgress;
    QElapsedTimer m_importTold;    // since the last report of it
};
