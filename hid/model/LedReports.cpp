#include "hid/model/LedReports.h"

#include "hid/model/ReportTemplate.h"
#include "hid/model/TelephonyControls.h"

namespace KX {

LedReports LedReports::FromControls(const TelephonyControls& controls)
{
    LedReports reports;
    if (controls.hasRingLed) {
        reports.ringOn = controls.ringLedReport;
        reports.ringOff = Cleared(controls.ringLedReport);
    }
    if (controls.hasOffHookLed) {
        reports.offHookOn = controls.offHookLedReport;
        reports.offHookOff = Cleared(controls.offHookLedReport);
    }
    if (controls.hasRingLed && controls.hasOffHookLed)
        reports.ringAndOffHookOn = Combined(controls.ringLedReport, controls.offHookLedReport);
    if (controls.hasMuteLed) {
        reports.muteOn = Combined(controls.muteLedReport, controls.offHookLedReport);
        // If the Mute LED has a separate report, the report is cleared. If it shares a report with
        // the Off-Hook LED, clearing the report would switch that LED off, too.
        reports.muteOff = ShareReport(controls.muteLedReport, controls.offHookLedReport)
            ? controls.offHookLedReport
            : Cleared(controls.muteLedReport);
    }
    if (controls.hasHoldLed)
        reports.holdOff = Cleared(controls.holdLedReport);
    return reports;
}

} // namespace KX
