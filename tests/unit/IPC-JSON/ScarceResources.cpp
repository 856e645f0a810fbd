#include "ScarceResources.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <array>
#include <cerrno>
#include <cstddef>

void RefuseSystemCall(unsigned number) {
    std::array<sock_filter, 4> steps{{
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, number},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EMFILE},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    }};
    const sock_fprog filter{steps.size(), steps.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        throw std::runtime_error("seccomp");
    }
}
