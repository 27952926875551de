int testModuleAnswer(void);

int testModuleAnswer(void) {
    return 42;
}
