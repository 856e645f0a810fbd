#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <deque>
#include <string>
#include <utility>
#include <vector>

/// Stands where the engine stands, in a program whose own functions take the place of the
/// engine's: nothing is loaded, and a view hears of a load only what a test tells it, when the
/// test tells it. The views and the context are the engine's own, but never get a process.
class ScriptedEngine {
public:
    using Cookies = std::vector<std::pair<std::string, std::string>>;

    static ScriptedEngine& Instance();

    /// Takes every view that is made from here on, and forgets all that was.
    void Start();

    // What the window has asked for.
    [[nodiscard]] const std::vector<std::string>& Loads() const { return m_loads; }
    [[nodiscard]] std::size_t UnansweredQueries() const { return m_queries.size(); }

    // What the view shows when asked.
    void SetUri(const std::string& uri) { m_uri = uri; }
    void SetLoading(bool loading);

    // What the view is told. Each runs the window's handlers before it returns.
    void TellLoadChanged(WebKitLoadEvent event, guint status = 200);
    void TellLoadFailed(GQuark domain, int code);
    void TellResourceStarted(const std::string& uri);
    /// Announces a response that is not there.
    void TellNoResponse();
    /// Answers the oldest query with these cookies.
    void AnswerQuery(const Cookies& cookies);

private:
    friend struct ScriptedEngineFunctions;

    struct Query {
        WebKitCookieManager* manager;
        GAsyncReadyCallback callback;
        gpointer data;
    };

    WebKitWebView* m_view = nullptr;
    WebKitWebResource* m_resource = nullptr;
    guint m_status = 200;
    bool m_hasResponse = true;
    std::string m_uri;
    bool m_loading = false;
    std::vector<std::string> m_loads;
    std::deque<Query> m_queries;
    Cookies m_answer;
};
