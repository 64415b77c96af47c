// A small shared library loaded at run time by the dynamic-library tests.
extern "C" {
int zt_plugin_answer() {
    return 42;
}
int zt_plugin_counter = 7;
}
