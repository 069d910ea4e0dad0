// The window-system service doubles installed together: message dialogs, errors, the cursor, the clock
// and the event pump answer without a window and record what they are asked for as long as the bundle
// lives. A fixture that derives from it (or holds one) has them in force for each test; the previous
// services come back when it goes.
#pragma once

#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"

namespace vl::test {

class TServiceBundle {
public:
    // The pump delivers Qt's pending events as the real one does, so that code that pumps still paints.
    TServiceBundle() { Pump.DeliverEvents = true; }

    TErrorServiceDouble Errors;
    TMessageServiceDouble Dialogs;
    TCursorServiceDouble Cursor;
    TManualClock Clock;
    TEventPumpDouble Pump;

private:
    TServiceScope<TErrorService> FErrorScope{Errors};
    TServiceScope<TMessageService> FDialogScope{Dialogs};
    TServiceScope<TCursorService> FCursorScope{Cursor};
    TServiceScope<TClockService> FClockScope{Clock};
    TServiceScope<TEventPump> FPumpScope{Pump};
};

} // namespace vl::test
