#include "platform/qt/StockClasses.h"

#include "platform/qt/ControlMessages.h"
#include "platform/qt/Window.h"

#include <commctrl.h>

namespace tavrix::platform
{

void RegisterStockClasses()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    RegisterStockClass(DialogClassName, DialogClassProcedure, MakeDialogWidget, true);
    RegisterStockClass(TEXT("STATIC"), StaticProcedure, MakeStaticWidget);
    RegisterStockClass(TEXT("BUTTON"), ButtonProcedure, MakeButtonWidget);
    RegisterStockClass(TEXT("msctls_progress32"), ProgressProcedure, MakeProgressWidget);
    RegisterStockClass(TRACKBAR_CLASSW, TrackbarProcedure, MakeTrackbarWidget);
    RegisterStockClass(WC_TREEVIEWW, TreeProcedure, MakeTreeWidget);
    RegisterStockClass(TEXT("EDIT"), EditProcedure, MakeEditWidget);
    RegisterStockClass(WC_LISTVIEWW, ListProcedure, MakeListWidget);
    RegisterStockClass(TEXT("COMBOBOX"), ComboProcedure, MakeComboWidget);
    RegisterStockClass(TEXT("LISTBOX"), ListBoxProcedure, MakeListBoxWidget);
    RegisterStockClass(CommandBarClassName, CommandBarProcedure, MakeCommandBarWidget);
}

} // namespace tavrix::platform
