/* Calls functions of the DLL as a host with a stack of any alignment does. */
#ifndef HOST32_CALL_H
#define HOST32_CALL_H

#include <stdint.h>

typedef struct Call {
    void* function; /* an address from GetProcAddress */
    unsigned
        misalignment; /* distance of the stack from a multiple of 16 where the arguments lie: 0, 4, 8, 12 */
    unsigned words;   /* 32-bit words of arguments */
    uint32_t arguments[16];
} Call;

void PassWord(Call* call, uint32_t word);
void PassAddress(Call* call, const void* address);

/* Both count a fault when the function did not take exactly its arguments off the stack. */
int32_t CallForInteger(const Call* call);
double CallForReal(const Call* call);

int StackFaults(void);

#endif
