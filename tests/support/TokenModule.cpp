// A module of smart cards, as p11-kit loads it: SoftHSM's, with what SoftHSM cannot do. In the
// folder that TK_TEST_TOKENS names, a test says which cards are in the reader, counts wrong PINs,
// and keeps calls waiting.

#include <dlfcn.h>
#include <fcntl.h>
#include <p11-kit/pkcs11.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace {

constexpr int kTries = 3;

CK_FUNCTION_LIST_PTR g_real = nullptr;
CK_FUNCTION_LIST g_functions;
std::mutex g_mutex;
std::map<CK_SESSION_HANDLE, CK_SLOT_ID> g_slots;

std::string PathOf(const char* name) {
    return std::string(std::getenv("TK_TEST_TOKENS")) + "/" + name;
}

// Reading a pipe ends when the test, which opens it, closes it.
void WaitAt(const char* name) {
    const int pipe = open(PathOf(name).c_str(), O_RDONLY | O_CLOEXEC);
    char byte = 0;
    if (pipe >= 0) {
        while (read(pipe, &byte, 1) > 0) {
        }
        close(pipe);
    }
}

std::string LabelOf(CK_SLOT_ID slot) {
    CK_TOKEN_INFO info{};
    if (g_real->C_GetTokenInfo(slot, &info) != CKR_OK) {
        return "";
    }
    const std::string label(reinterpret_cast<const char*>(info.label), sizeof info.label);
    return label.substr(0, label.find_last_not_of(' ') + 1);
}

bool IsIn(CK_SLOT_ID slot) {
    const std::string label = LabelOf(slot);
    std::ifstream inserted(PathOf("inserted"));
    for (std::string line; std::getline(inserted, line);) {
        if (line == label) {
            return true;
        }
    }
    return false;
}

bool IsIn(CK_SESSION_HANDLE session, CK_SLOT_ID& slot) {
    const std::lock_guard<std::mutex> guard(g_mutex);
    slot = g_slots[session];
    return IsIn(slot);
}

int WrongPins(CK_SLOT_ID slot) {
    int wrong = 0;
    std::ifstream(PathOf(("wrong-" + LabelOf(slot)).c_str())) >> wrong;
    return wrong;
}

void SetWrongPins(CK_SLOT_ID slot, int wrong) {
    std::ofstream(PathOf(("wrong-" + LabelOf(slot)).c_str())) << wrong;
}

CK_FLAGS FlagsOfTries(int wrong) {
    switch (wrong) {
        case 0:
            return 0;
        case kTries - 1:
            return CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY;
        default:
            return wrong >= kTries ? CKF_USER_PIN_LOCKED : CKF_USER_PIN_COUNT_LOW;
    }
}

CK_RV GetSlotList(CK_BBOOL hasToken, CK_SLOT_ID_PTR list, CK_ULONG_PTR count) {
    WaitAt("reading");
    CK_ULONG all = 0;
    g_real->C_GetSlotList(hasToken, nullptr, &all);
    std::vector<CK_SLOT_ID> slots(all);
    const CK_RV result = g_real->C_GetSlotList(hasToken, slots.data(), &all);
    slots.resize(all);
    slots.erase(
        std::remove_if(slots.begin(), slots.end(), [](CK_SLOT_ID slot) { return !IsIn(slot); }),
        slots.end());
    if (list != nullptr) {
        std::copy_n(slots.begin(), std::min<std::size_t>(slots.size(), *count), list);
    }
    *count = slots.size();
    return result;
}

CK_RV GetTokenInfo(CK_SLOT_ID slot, CK_TOKEN_INFO_PTR info) {
    if (!IsIn(slot)) {
        return CKR_TOKEN_NOT_PRESENT;
    }
    const CK_RV result = g_real->C_GetTokenInfo(slot, info);
    info->flags &= ~(CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED);
    info->flags |= FlagsOfTries(WrongPins(slot));
    return result;
}

CK_RV OpenSession(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR data, CK_NOTIFY notify,
                  CK_SESSION_HANDLE_PTR session) {
    if (!IsIn(slot)) {
        return CKR_TOKEN_NOT_PRESENT;
    }
    const CK_RV result = g_real->C_OpenSession(slot, flags, data, notify, session);
    const std::lock_guard<std::mutex> guard(g_mutex);
    g_slots[*session] = slot;
    return result;
}

CK_RV Login(CK_SESSION_HANDLE session, CK_USER_TYPE user, CK_UTF8CHAR_PTR pin, CK_ULONG size) {
    CK_SLOT_ID slot = 0;
    if (!IsIn(session, slot)) {
        return CKR_DEVICE_REMOVED;
    }
    if (WrongPins(slot) >= kTries) {
        return CKR_PIN_LOCKED;
    }
    CK_RV result = g_real->C_Login(session, user, pin, size);
    if (result == CKR_OK) {
        SetWrongPins(slot, 0);
    } else if (result != CKR_USER_ALREADY_LOGGED_IN) {
        SetWrongPins(slot, WrongPins(slot) + 1);
        result = CKR_PIN_INCORRECT;
    }
    return result;
}

CK_RV Sign(CK_SESSION_HANDLE session, CK_BYTE_PTR data, CK_ULONG size, CK_BYTE_PTR signature,
           CK_ULONG_PTR signatureSize) {
    WaitAt("signing");
    CK_SLOT_ID slot = 0;
    return IsIn(session, slot) ? g_real->C_Sign(session, data, size, signature, signatureSize)
                               : CKR_DEVICE_REMOVED;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) CK_RV C_GetFunctionList(
    CK_FUNCTION_LIST_PTR_PTR list) {
    static void* const library = dlopen(TK_SOFT_TOKENS, RTLD_NOW | RTLD_LOCAL);
    const auto real =
        library != nullptr
            ? reinterpret_cast<CK_C_GetFunctionList>(dlsym(library, "C_GetFunctionList"))
            : nullptr;
    if (real == nullptr || real(&g_real) != CKR_OK) {
        return CKR_GENERAL_ERROR;
    }
    g_functions = *g_real;
    g_functions.C_GetFunctionList = C_GetFunctionList;
    g_functions.C_GetSlotList = GetSlotList;
    g_functions.C_GetTokenInfo = GetTokenInfo;
    g_functions.C_OpenSession = OpenSession;
    g_functions.C_Login = Login;
    g_functions.C_Sign = Sign;
    *list = &g_functions;
    return CKR_OK;
}
