// A library that the sample module needs; its export must not pass for one of the module's own.

extern "C" __attribute__((visibility("default"))) int DependencyAnswer(void)
{
    return 7;
}
