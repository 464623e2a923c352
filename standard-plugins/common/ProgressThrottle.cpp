#include "standard-plugins/common/ProgressThrottle.h"

void StartProgress(ProgressThrottle* throttle, TavrixProgressCallback callback, uint32_t total)
{
    throttle->callback = callback;
    throttle->total = total;
    throttle->reported = 101;
}

bool ReportProgress(ProgressThrottle* throttle, uint32_t done)
{
    const auto hundredths =
        static_cast<uint32_t>(static_cast<uint64_t>(done) * 100 / throttle->total);
    if (hundredths == throttle->reported)
        return true;
    throttle->reported = hundredths;
    return ReportProgressNow(throttle, done);
}

bool ReportProgressNow(ProgressThrottle* throttle, uint32_t done)
{
    return !throttle->callback || throttle->callback(done, throttle->total) >= 0;
}
