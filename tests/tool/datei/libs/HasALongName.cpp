// A library with some functions, the name of one of which is as long as a compiler has to accept. It is only looked
// at, never opened.

#define ZEHNMAL(x) x x x x x x x x x x
#define JE_ZEHN(f, n) f(n##0) f(n##1) f(n##2) f(n##3) f(n##4) f(n##5) f(n##6) f(n##7) f(n##8) f(n##9)
#define FUNKTION(n)                                                                                          \
    __attribute__((visibility("default"))) void funktion##n();                                               \
    void funktion##n() {}

extern "C" {

JE_ZEHN(FUNKTION, 1)
JE_ZEHN(FUNKTION, 2)
JE_ZEHN(FUNKTION, 3)

__attribute__((visibility("default"))) void lang() __asm__(ZEHNMAL(ZEHNMAL(ZEHNMAL(ZEHNMAL("langer")))));
void lang() {}
}
