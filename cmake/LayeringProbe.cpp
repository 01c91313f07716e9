// Compiled at configure time with the library's include path: it compiles only when the
// reference engine's headers are out of a dialog's reach.
#if __has_include("reference/ReferenceEngine.h") || __has_include("ReferenceEngine.h")
#error "a dialog could include the reference engine's headers"
#endif

int main() {
    return 0;
}
