/* A program that imports two functions of ordlib.dll by ordinal and two by
   name. Linked against a delay-load import library, the same source gives a
   program whose ordlib.dll imports are resolved at run time instead. */
#include <windows.h>

int ord_alpha(void);
int ord_beta(void);
int zeta(void);
int able(void);

void start(void) __asm__("start");
void start(void)
{
    ExitProcess((UINT)(ord_alpha() + ord_beta() + zeta() + able()));
}
