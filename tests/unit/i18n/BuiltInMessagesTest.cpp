#include "BuiltInMessages.h"

#include <gtest/gtest.h>

namespace {

TEST(BuiltInMessages, NameTheProductAndItsLoginWindow) {
    EXPECT_EQ(kProductFullName, "Velto Tunnelkeep VPN Client");
    EXPECT_EQ(kLoginWindowTitle, "Velto Tunnelkeep Login");
}

TEST(BuiltInMessages, AskForACertificateAndItsPin) {
    EXPECT_EQ(kCertificateDialogTitle, "Choose a Certificate");
    EXPECT_EQ(kCertificateQuestion,
              "The site %s asks for your certificate, which tells the site who you are.");
    EXPECT_EQ(kCertificateIssuer, "Issued by %s");
    EXPECT_EQ(kCertificateValidity, "Valid from %s to %s");
    EXPECT_EQ(kCertificateToken, "On %s");
    EXPECT_EQ(kPinDialogTitle, "Enter the PIN");
    EXPECT_EQ(kPinQuestion, "Enter the PIN of %s.");
    EXPECT_EQ(kPinWrong, "The PIN was wrong. Wrong PINs so far: %s.");
    EXPECT_EQ(kPinFewTries, "Only a few tries are left.");
    EXPECT_EQ(kPinLastTry, "Only one try is left. After another wrong PIN the card is locked.");
}

TEST(BuiltInMessages, MarkMnemonics) {
    EXPECT_EQ(kCancelMnemonic, "_Cancel");
    EXPECT_EQ(kUseCertificateMnemonic, "_Use This Certificate");
    EXPECT_EQ(kContinueMnemonic, "C_ontinue");
    EXPECT_EQ(kGetCertificateMnemonic, "_Get Certificate");
    EXPECT_EQ(kDisconnectMnemonic, "_Disconnect");
    EXPECT_EQ(kConnectMnemonic, "_Connect");
    EXPECT_EQ(kAcceptMnemonic, "_Accept");
}

TEST(BuiltInMessages, MarkBoldCaptions) {
    EXPECT_EQ(kConnectionInformationCaption, "<b>Connection Information</b>");
}

TEST(BuiltInMessages, HaveAmountsInPairs) {
    EXPECT_EQ(kDayAmount, "%u Day");
    EXPECT_EQ(kDaysAmount, "%u Days");
    EXPECT_EQ(kHourAmount, "%u Hour");
    EXPECT_EQ(kHoursAmount, "%u Hours");
    EXPECT_EQ(kMinuteAmount, "%u Minute");
    EXPECT_EQ(kMinutesAmount, "%u Minutes");
}

TEST(BuiltInMessages, HaveABlank) {
    EXPECT_EQ(kBlank, " ");
}

TEST(BuiltInMessages, OfTheDialogs) {
    EXPECT_EQ(kBrowserTitle, "Velto Tunnelkeep Browser");
    EXPECT_EQ(kUntrustedServerBlocked, "Untrusted Server Blocked!");
    EXPECT_EQ(kContinueAnywayQuestion, "Would you like to continue anyway?");
    EXPECT_EQ(kKeepMeSafe, "Keep Me Safe");
    EXPECT_EQ(kCertificateNameMismatch, "Certificate does not match the server name.");
    EXPECT_EQ(kCertificateRevoked, "Certificate has been revoked.");
}

TEST(BuiltInMessages, OfTheConnectionPanel) {
    EXPECT_EQ(kConnect, "Connect");
    EXPECT_EQ(kDisconnect, "Disconnect");
    EXPECT_EQ(kReconnect, "Reconnect");
    EXPECT_EQ(kPaused, "Paused");
    EXPECT_EQ(kVpnConnected, "VPN Connected");
}

TEST(BuiltInMessages, OfTheStatisticsPages) {
    EXPECT_EQ(kConnectionInformation, "Connection Information");
    EXPECT_EQ(kTransportInformation, "Transport Information");
    EXPECT_EQ(kSecuredRoutesIpv4, "Secured Routes (IPv4)");
    EXPECT_EQ(kTunnelModeIpv4, "Tunnel Mode (IPv4):");
    EXPECT_EQ(kClientAddressIpv4, "Client Address (IPv4)");
}

TEST(BuiltInMessages, OfTheNetworkList) {
    EXPECT_EQ(kWired, "Wired");
    EXPECT_EQ(kMobileBroadbandNetwork, "Mobile Broadband Network");
    EXPECT_EQ(kDynamicWep, "Dynamic WEP");
    EXPECT_EQ(kWpa2PersonalAes, "WPA2 Personal AES");
    EXPECT_EQ(k8021X, "802.1X");
}

TEST(BuiltInMessages, OfTheEventLog) {
    EXPECT_EQ(kUserDeclinedBanner, "User declined banner.");
    EXPECT_EQ(kUserCredentialsEntered, "User credentials entered.");
    EXPECT_EQ(kUserCredentialsPromptCancelled, "User credentials prompt cancelled.");
}

TEST(BuiltInMessages, OfErrors) {
    EXPECT_EQ(kRequestNotPermittedInAutoConnect, "Request not permitted in auto-connect mode.");
    EXPECT_EQ(kServiceUnavailable, "Service unavailable.");
    EXPECT_EQ(kScriptExtensionRequired, "File extension must be .exe, .bat or .cmd.");
}

}  // namespace
