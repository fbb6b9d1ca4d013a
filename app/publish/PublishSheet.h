#pragma once
#include "app/controls/popovers/Sheet.h"
#include "app/publish/PublishShown.h"

#include <QImage>

class CaptionField;
class HistoryPage;
class NetworkCard;
class PostPreview;
class PostStrip;
class PublishStatusPanel;
class PushButton;
class QScrollArea;
class QStackedWidget;
class SegmentedControl;

// The sheet in which the selected images are published: the post as the network shows it, the
// networks, the caption, what was told and checked, and on a second page what was published.
class PublishSheet : public Sheet {
    Q_OBJECT
public:
    explicit PublishSheet(QWidget* window);

    enum class Page { publish, history };
    void setPage(Page page);
    Page page() const;
    void setShown(const PublishShown& shown);    // emits nothing
    // Parts of what setShown() shows.
    void setReport(const PublishReport& report);
    void setCaption(const CaptionShown& caption);
    void setConfirming(bool confirming);
    HistoryPage* history() const { return m_history; }
    void setHistory(const QList<PublishHistoryEntry>& entries);
    void focusCaption();

    // The image in the preview; null if there is none.
    QUuid previewed() const { return m_previewed; }
    void preview(QUuid image);
    QSize previewPixels() const;
    void setPreview(QUuid image, const QImage& picture);
    PostStrip* strip() const { return m_strip; }

Q_SIGNALS:
    void networkChosen(SocialPublishNetwork network);
    void placementChosen(SocialPublishPlacement placement);
    void connectRequested(SocialPublishNetwork network);
    void publishRequested(SocialPublishNetwork network);
    void stopRequested();
    void pageRequested();    // of the post that was published just now
    void captionEdited(const QString& caption);
    void captionOfWanted(QUuid item);
    void captionChoicesWanted(QList<CaptionChoice>* choices);    // to be filled
    void followRequested(const PublishCheck& check);
    void previewWanted();    // of previewed(), with previewPixels()

private:
    QWidget* publishPage();
    QWidget* header();
    QWidget* footer();
    void fillColumn();
    void showButtons();
    void showPreview();
    void step(int images);
    void orderFocus();
    void showFocused(QWidget* focused);

    PublishShown m_shown;
    QUuid m_previewed;
    class Caption* m_selection;
    PostPreview* m_preview;
    PostStrip* m_strip;
    class PaidLine* m_paid;
    SegmentedControl* m_pages;
    class BalanceLine* m_balance;
    QStackedWidget* m_stack;
    QScrollArea* m_area = nullptr;
    QList<NetworkCard*> m_cards;
    CaptionField* m_caption;
    PublishStatusPanel* m_status;
    HistoryPage* m_history;
    class Caption* m_kept;
    PushButton* m_closing;
    PushButton* m_primary;
};
