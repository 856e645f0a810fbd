// The dialog in which a person gives a name and a password.

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>
#include <vector>

#include "NewestQuestion.h"
#include "PictureTest.h"

namespace {

using testing::ElementsAre;

// "name:word" and "name:wrong".
constexpr char kRight[] = "Basic bmFtZTp3b3Jk";
constexpr char kWrong[] = "Basic bmFtZTp3cm9uZw==";
constexpr char kRefusal[] = "The user name or the password was wrong. Please try again.";

class WindowPasswordTest : public PictureTest {
protected:
    WindowPasswordTest() {
        m_server.Handle("/locked", [](HttpExchange& exchange) {
            if (exchange.Request().Header("Authorization") == kRight) {
                exchange.Respond({200, "<!DOCTYPE html><body style='background: #20a040'>"});
            } else {
                exchange.Respond(
                    {401, "refused", "text/html", {{"WWW-Authenticate", "Basic realm=\"a\""}}});
            }
        });
        Open();
        Send(Operation::Browse(m_server.Url("/locked"), "never").Shown());
    }

    /// Waits until the dialog is on the screen, where it dims the view, and has the keyboard. At
    /// this distance from the left edge is its field.
    void AwaitDialog(unsigned field = 500) {
        ASSERT_TRUE(WaitUntilShown());
        FocusWindow();
        ASSERT_TRUE(RunMainLoopUntil([&] {
            GtkWidget* const focus = gtk_window_get_focus(Window());
            const Screenshot now = WindowPicture();
            return focus != nullptr && GTK_IS_ENTRY(focus) && now.At(field, 350) == kWhite &&
                   now.At(10, 300) != kWhite;
        }));
    }

    void Answer(const std::string& name, const std::string& password) {
        m_screen.Type(name);
        m_screen.Press({GDK_KEY_Tab});
        m_screen.Type(password);
        m_screen.Press({GDK_KEY_Return});
    }

    /// The texts that the view shows besides its page.
    [[nodiscard]] std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        CollectTexts(GTK_WIDGET(View()), &texts);
        return texts;
    }

    [[nodiscard]] bool WaitForText(const std::string& text) const {
        return RunMainLoopUntil([&] {
            const std::vector<std::string> texts = Texts();
            return std::find(texts.begin(), texts.end(), text) != texts.end();
        });
    }

    /// The different ones in turn: the page is requested again where the engine lost its question.
    [[nodiscard]] std::vector<std::string> Passwords() const {
        std::vector<std::string> passwords;
        for (const HttpRequest& request : m_server.Requests()) {
            passwords.push_back(request.Header("Authorization"));
        }
        passwords.erase(std::unique(passwords.begin(), passwords.end()), passwords.end());
        return passwords;
    }

private:
    static void CollectTexts(GtkWidget* widget, gpointer texts) {
        if (GTK_IS_LABEL(widget) && gtk_widget_get_mapped(widget) != FALSE) {
            static_cast<std::vector<std::string>*>(texts)->emplace_back(
                gtk_label_get_text(GTK_LABEL(widget)));
        } else if (GTK_IS_CONTAINER(widget)) {
            gtk_container_forall(GTK_CONTAINER(widget), CollectTexts, texts);
        }
    }
};

}  // namespace

TEST_F(WindowPasswordTest, TheDialogOffersNothingToRemember) {
    ASSERT_NO_FATAL_FAILURE(AwaitDialog());
    Keep("first", WindowPicture());
    EXPECT_THAT(
        Texts(),
        ElementsAre("Authentication Required",
                    "Authentication required by 127.0.0.1:" + std::to_string(m_server.Port()),
                    "The site says: “a”", "Password", "Username", "Cancel", "Authenticate"));
}

TEST_F(WindowPasswordTest, TheDialogSaysThatTheFirstTryWasWrong) {
    ASSERT_NO_FATAL_FAILURE(AwaitDialog());
    Answer("name", "wrong");
    ASSERT_TRUE(WaitForText(kRefusal));
    // The text makes it wider than the first one, whose picture may still be there.
    ASSERT_NO_FATAL_FAILURE(AwaitDialog(390));
    Keep("second", WindowPicture());
    Answer("name", "word");
    EXPECT_TRUE(RunMainLoopUntil([&] { return Passwords().back() == kRight; }));
    EXPECT_THAT(Passwords(), ElementsAre("", kWrong, kRight));
}

TEST_F(WindowPasswordTest, TheDialogComesAgainIfTheEngineGivesTheQuestionUp) {
    NewestQuestion question;
    ASSERT_NO_FATAL_FAILURE(AwaitDialog());
    m_server.Serve("/locked",
                   {401, "refused", "text/html", {{"WWW-Authenticate", "Basic realm=\"b\""}}});
    question.Cancel();
    EXPECT_TRUE(WaitForText("The site says: “b”"));
    EXPECT_THAT(Results(), ElementsAre());
}

TEST_F(WindowPasswordTest, EscapeCancelsTheDialog) {
    ASSERT_NO_FATAL_FAILURE(AwaitDialog());
    m_screen.Press({GDK_KEY_Escape});
    // The page is the server's refusal then.
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
    EXPECT_THAT(Texts(), ElementsAre());
    EXPECT_THAT(Passwords(), ElementsAre(""));
}
