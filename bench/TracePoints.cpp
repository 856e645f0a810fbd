// Preloaded into the helper. Records the calls that the program itself makes of its socket, of the
// engine and of the toolkit. Each call is a line "function, start, end", in nanoseconds of the
// steady clock. Whenever something is sent, the lines go to the file that TK_TRACE_POINTS names.
// The program's own share is the time between two such calls.

#include <dlfcn.h>
#include <link.h>
#include <sys/socket.h>
#include <webkit2/webkit2.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace {

using Nanoseconds = std::chrono::nanoseconds::rep;

Nanoseconds Now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// The addresses of the program's own code. The program comes first in the list.
std::pair<std::uintptr_t, std::uintptr_t> ProgramBounds() {
    std::pair<std::uintptr_t, std::uintptr_t> bounds{};
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t /*size*/, void* found) {
            auto& [begin, end] = *static_cast<decltype(bounds)*>(found);
            begin = object->dlpi_addr;
            for (int i = 0; i < object->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = object->dlpi_phdr[i];
                end = std::max<std::uintptr_t>(end, begin + segment.p_vaddr + segment.p_memsz);
            }
            return 1;
        },
        &bounds);
    return bounds;
}

/// The calls recorded since the last write. The program's threads share this.
class Notes {
public:
    void Add(const char* function, Nanoseconds start, Nanoseconds end) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_notes.push_back({function, start, end});
    }

    void Write() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        std::ofstream file(std::getenv("TK_TRACE_POINTS"), std::ios::app);
        for (const auto& [function, start, end] : m_notes) {
            file << function << ' ' << start << ' ' << end << '\n';
        }
        m_notes.clear();
    }

private:
    struct Note {
        const char* function;
        Nanoseconds start;
        Nanoseconds end;
    };

    std::mutex m_mutex;
    std::vector<Note> m_notes;
};

// Never destroyed, because the program's threads make calls until the end.
Notes& TheNotes() {
    static Notes* const notes = std::make_unique<Notes>().release();
    return *notes;
}

/// One call of the engine, from here to the end of the scope, if the program itself makes the call.
class Call {
public:
    Call(const char* function, const void* caller) : m_function(function) {
        static const auto bounds = ProgramBounds();
        const auto address = reinterpret_cast<std::uintptr_t>(caller);
        m_isOurs = address >= bounds.first && address < bounds.second;
    }
    ~Call() {
        if (m_isOurs) {
            TheNotes().Add(m_function, m_start, Now());
        }
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    const char* m_function;
    bool m_isOurs = false;
    Nanoseconds m_start = Now();
};

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool IsConnectionToAgent(int descriptor) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    return getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
           address.ss_family == AF_INET;
}

}  // namespace

extern "C" {

ssize_t recv(int descriptor, void* buffer, std::size_t size, int flags) {
    static auto* const next = Next<decltype(recv)>(__func__);
    const ssize_t count = next(descriptor, buffer, size, flags);
    if (count > 0 && IsConnectionToAgent(descriptor)) {
        const Call received(__func__, __builtin_return_address(0));
    }
    return count;
}

ssize_t send(int descriptor, const void* buffer, std::size_t size, int flags) {
    static auto* const next = Next<decltype(send)>(__func__);
    if (IsConnectionToAgent(descriptor)) {
        { const Call sending(__func__, __builtin_return_address(0)); }
        // Written before the agent can know of the result and read the file.
        TheNotes().Write();
    }
    return next(descriptor, buffer, size, flags);
}

void webkit_web_view_load_uri(WebKitWebView* view, const gchar* uri) {
    static auto* const next = Next<decltype(webkit_web_view_load_uri)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    next(view, uri);
}

// With the engine's newer API the window uses this one. It counts under the other's name.
void webkit_web_view_load_request(WebKitWebView* view, WebKitURIRequest* request) {
    static auto* const next = Next<decltype(webkit_web_view_load_request)>(__func__);
    const Call call("webkit_web_view_load_uri", __builtin_return_address(0));
    next(view, request);
}

const gchar* webkit_web_view_get_uri(WebKitWebView* view) {
    static auto* const next = Next<decltype(webkit_web_view_get_uri)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    return next(view);
}

GList* webkit_cookie_manager_get_cookies_finish(WebKitCookieManager* manager, GAsyncResult* result,
                                                GError** error) {
    static auto* const next = Next<decltype(webkit_cookie_manager_get_cookies_finish)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    return next(manager, result, error);
}

void webkit_web_view_stop_loading(WebKitWebView* view) {
    static auto* const next = Next<decltype(webkit_web_view_stop_loading)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    next(view);
}

GtkWidget* webkit_web_view_new_with_context(WebKitWebContext* context) {
    static auto* const next = Next<decltype(webkit_web_view_new_with_context)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    return next(context);
}

void gtk_container_remove(GtkContainer* container, GtkWidget* widget) {
    static auto* const next = Next<decltype(gtk_container_remove)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    next(container, widget);
}

void gtk_container_add(GtkContainer* container, GtkWidget* widget) {
    static auto* const next = Next<decltype(gtk_container_add)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    next(container, widget);
}

void g_object_unref(gpointer object) {
    static auto* const next = Next<decltype(g_object_unref)>(__func__);
    const Call call(__func__, __builtin_return_address(0));
    next(object);
}

}  // extern "C"
