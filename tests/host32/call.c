#include "call.h"

static int stack_faults;

void PassWord(Call* call, uint32_t word) {
    call->arguments[call->words++] = word;
}

void PassAddress(Call* call, const void* address) {
    PassWord(call, (uint32_t)(uintptr_t)address);
}

int StackFaults(void) {
    return stack_faults;
}

/* No compiler would produce this call: it keeps the stack aligned for the callee. Old hosts and interpreters
 * push the arguments wherever the stack stands. %esi survives the callee and tells afterwards how much of the
 * stack it took; %ebx brings the stack back whatever happened. */
#define CALL_AT_ALIGNMENT   \
    "movl %%esp, %%ebx\n\t" \
    "andl $-16, %%esp\n\t"  \
    "subl %%edx, %%esp\n\t" \
    "movl %%esp, %%edi\n\t" \
    "cld\n\t"               \
    "rep movsl\n\t"         \
    "movl %%esp, %%esi\n\t" \
    "call *%%eax\n\t"       \
    "negl %%esi\n\t"        \
    "addl %%esp, %%esi\n\t" \
    "movl %%ebx, %%esp\n\t"

#define CLOBBERED "ebx", "edi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7"

static unsigned RoomFor(const Call* call) {
    return (4 * call->words + 15) / 16 * 16 + 16 - call->misalignment;
}

static void CheckTaken(const Call* call, uint32_t taken) {
    if (taken != 4 * call->words) {
        ++stack_faults;
    }
}

__attribute__((noinline)) int32_t CallForInteger(const Call* call) {
    uint32_t result = (uint32_t)(uintptr_t)call->function;
    uint32_t words = call->words;
    uint32_t room = RoomFor(call);
    uint32_t taken = (uint32_t)(uintptr_t)call->arguments;
    __asm__ volatile(CALL_AT_ALIGNMENT : "+a"(result), "+c"(words), "+d"(room), "+S"(taken) : : CLOBBERED);
    CheckTaken(call, taken);
    return (int32_t)result;
}

__attribute__((noinline)) double CallForReal(const Call* call) {
    static double result;
    uint32_t function = (uint32_t)(uintptr_t)call->function;
    uint32_t words = call->words;
    uint32_t room = RoomFor(call);
    uint32_t taken = (uint32_t)(uintptr_t)call->arguments;
    __asm__ volatile(CALL_AT_ALIGNMENT "fstpl %4\n\t"
                     : "+a"(function), "+c"(words), "+d"(room), "+S"(taken), "=m"(result)
                     :
                     : CLOBBERED);
    CheckTaken(call, taken);
    return result;
}
