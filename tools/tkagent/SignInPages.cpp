#include "SignInPages.h"

namespace {

constexpr const char* kPageHead = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Sign in</title>
<style>
  * { box-sizing: border-box; }
  html, body { height: 100%; margin: 0; }
  body {
    display: flex; align-items: center; justify-content: center;
    font: 15px/1.5 system-ui, "DejaVu Sans", sans-serif; color: #1c2733;
    background: linear-gradient(140deg, #12305a 0%, #1f6f8b 55%, #5fb49c 100%);
  }
  main {
    width: 380px; padding: 36px 36px 28px; border-radius: 14px; background: #fff;
    box-shadow: 0 24px 60px rgba(6, 22, 46, .35);
  }
  .mark {
    display: block; width: 48px; height: 48px; padding: 11px; margin-bottom: 18px;
    border-radius: 12px; background: linear-gradient(140deg, #12305a, #1f6f8b);
    fill: none; stroke: #fff; stroke-width: 2; stroke-linecap: round; stroke-linejoin: round;
  }
  h1 { margin: 0 0 4px; font-size: 22px; font-weight: 600; }
  p { margin: 0 0 22px; color: #5b6b7b; }
  label { display: block; margin-bottom: 14px; font-size: 13px; color: #3c4a58; }
  input {
    display: block; width: 100%; margin-top: 5px; padding: 10px 12px;
    font: inherit; color: inherit; border: 1px solid #c9d3dc; border-radius: 8px;
  }
  input:focus { outline: none; border-color: #1f6f8b; box-shadow: 0 0 0 3px #1f6f8b33; }
  button {
    width: 100%; margin-top: 6px; padding: 11px; border: 0; border-radius: 8px;
    font: inherit; font-weight: 600; color: #fff; background: #1f6f8b; cursor: pointer;
  }
  button:hover { background: #185a71; }
  .message {
    margin: 0 0 12px; padding: 9px 12px; border-radius: 8px;
    font-size: 13px; color: #8c1d18; background: #fdecea;
  }
  .hint { margin: 18px 0 0; font-size: 12.5px; text-align: center; }
</style>
</head>
<body>
<main>
)html";

constexpr const char* kPageEnd = "</main>\n</body>\n</html>\n";

constexpr const char* kFormStart =
    R"html(  <svg class="mark" viewBox="0 0 24 24"><rect x="4" y="11" width="16" height="10" rx="2"
    fill="#fff"/><path d="M8 11V7a4 4 0 0 1 8 0v4"/></svg>
  <h1>Sign in</h1>
  <p>to continue to your private network</p>
  <form method="post" action="/signin">
    <label>User name
      <input name="user" autocomplete="off" required autofocus></label>
    <label>Password
      <input name="password" type="password" required></label>
)html";

constexpr const char* kFormEnd = R"html(    <button>Sign in</button>
  </form>
)html";

constexpr const char* kWelcome =
    R"html(  <svg class="mark" viewBox="0 0 24 24"><path d="M5 13l4 4L19 7"/></svg>
  <h1>You are signed in</h1>
  <p>This window closes by itself.</p>
)html";

// The engine reports the first paint of content. Two frames later the window shows it.
constexpr const char* kScriptStart = R"html(<script>
  const firstPaint = new Promise(done => new PerformanceObserver(done)
      .observe({ type: 'paint', buffered: true }));
  const nextFrame = () => new Promise(done => requestAnimationFrame(done));
  const signIn = (user, password) => {
    const form = document.forms[0];
    form.user.value = user;
    form.password.value = password;
    form.submit();
  };
  firstPaint.then(nextFrame).then(nextFrame)
)html";

std::string MessageBlock(const std::string& message) {
    return message.empty() ? "" : "    <div class=\"message\">" + message + "</div>\n";
}

std::string Hint() {
    return "  <p class=\"hint\">Try <b>" + std::string(kDemoUser) + "</b> with the password <b>" +
           kDemoPassword + "</b>.</p>\n";
}

std::string SignInCall(const std::string& password) {
    return "    .then(() => signIn('" + std::string(kDemoUser) + "', '" + password +
           "'));\n</script>\n";
}

std::string ScriptBlock(PageScript script) {
    switch (script) {
        case PageScript::ReportAndMistype:
            return std::string(kScriptStart) +
                   "    .then(() => fetch('/painted', { method: 'POST' }))\n" +
                   SignInCall("mistyped");
        case PageScript::SignIn:
            return kScriptStart + SignInCall(kDemoPassword);
        case PageScript::None:
            break;
    }
    return "";
}

}  // namespace

std::string SignInFormPage(const std::string& message, PageScript script) {
    return kPageHead + std::string(kFormStart) + MessageBlock(message) + kFormEnd + Hint() +
           ScriptBlock(script) + kPageEnd;
}

std::string WelcomePage() {
    return std::string(kPageHead) + kWelcome + kPageEnd;
}
