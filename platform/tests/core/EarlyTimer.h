// The timer that the timers' tests set before main runs. It would put messages of its own between
// those that other tests look for, so they have it rest meanwhile.
#pragma once

void RestEarlyTimer();
void ResumeEarlyTimer();
