// The style of everything that the program shows: the toolkit's own one that looks the same on each
// host, without what it would load at start. User-interface thread.
#pragma once

#include <QProxyStyle>

namespace tavrix::platform
{

class ApplicationStyle : public QProxyStyle
{
public:
    ApplicationStyle();

    /// The mark of a menu bar that has not room for all its entries is drawn. Each menu bar takes
    /// it when it is made, and the toolkit's is a picture, for which it loads its picture readers.
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace tavrix::platform
