extern "C" void __assert_rtn(const char*, const char*, int, const char*) __attribute__((noreturn));

#undef assert
#define assert(e) (__builtin_expect(!(e), 0) ? __assert_rtn(__func__, __FILE__, __LINE__, #e) : (void)0)
