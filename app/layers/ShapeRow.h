#pragma once
#include "app/controls/Button.h"
#include "model/ShapeLayer.h"

// A row in the list of the image's shapes. A click on the row asks to select its shape.
class ShapeRow : public Control {
    Q_OBJECT
public:
    explicit ShapeRow(QWidget* parent = nullptr);
    enum class Mark { none, selected };
    void setShape(const ShapeLayer& shape, const QString& name, Mark mark);
    QUuid shapeId() const { return m_shape.id; }
    IconButton* deleteButton() const { return m_delete; }

Q_SIGNALS:
    void deleteRequested(QUuid shape);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    ShapeLayer m_shape;
    Mark m_mark = Mark::none;
    IconButton* m_delete;
};
