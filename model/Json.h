#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// Records as JSON, and back. Defined for the records of model/ that files hold: CodableColor,
// CodableRect, ImagePlacement, GeneratedCopy, TextLayer, TextLayerDesign, ShapeLayer,
// ShapeLayerDesign and QLists of the two layers.

template <typename Record>
QByteArray toJson(const Record& record);

// Nothing when the bytes are not JSON or not such a record; never throws. In a list, what does not
// read is dropped.
template <typename Record>
std::optional<Record> fromJson(QByteArrayView bytes);
