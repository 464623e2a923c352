// What the program's picture is to the toolkit: types that are offered, and bytes that are made
// only when somebody asks for them. User-interface thread.
#pragma once

#include "platform/qt/ClipboardItem.h"

#include <QMimeData>

namespace tavrix::platform
{

class ClipboardData : public QMimeData
{
public:
    /// Offers the item for as long as it lives; nothing when it is no picture.
    explicit ClipboardData(const std::shared_ptr<ClipboardItem>& picture) : item(picture) {}

    QStringList formats() const override;
    bool hasFormat(const QString& type) const override { return formats().contains(type); }

protected:
    QVariant retrieveData(const QString& type, QMetaType preferred) const override;

private:
    std::weak_ptr<const ClipboardItem> item;
};

} // namespace tavrix::platform
