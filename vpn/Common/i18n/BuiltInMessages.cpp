#include "BuiltInMessages.h"

// scripts/update-catalogs.sh generates the catalogues' template from this table, with the comments
// for translators.

const std::string kProductFullName = "Velto Tunnelkeep VPN Client";
// Translators: title of the window in which people sign in.
const std::string kLoginWindowTitle = "Velto Tunnelkeep Login";

// Translators: in the dialog that asks for a name and a password, after a first try.
const std::string kSignInRefused = "The user name or the password was wrong. Please try again.";

// Translators: in the dialog that asks which certificate to show to a web site.
const std::string kCertificateDialogTitle = "Choose a Certificate";
// Translators: %s is the site's host and port.
const std::string kCertificateQuestion =
    "The site %s asks for your certificate, which tells the site who you are.";
// Translators: %s is the name of who issued the certificate.
const std::string kCertificateIssuer = "Issued by %s";
// Translators: the first %s is the first day, the second %s the last one.
const std::string kCertificateValidity = "Valid from %s to %s";
// Translators: %s is the name of the smart card or of another token.
const std::string kCertificateToken = "On %s";

// Translators: in the dialog that asks for the PIN of a smart card.
const std::string kPinDialogTitle = "Enter the PIN";
// Translators: %s is the name of the smart card or of another token.
const std::string kPinQuestion = "Enter the PIN of %s.";
// Translators: %s is a number.
const std::string kPinWrong = "The PIN was wrong. Wrong PINs so far: %s.";
// Translators: the smart card does not tell how many.
const std::string kPinFewTries = "Only a few tries are left.";
const std::string kPinLastTry = "Only one try is left. After another wrong PIN the card is locked.";

// Translators: the letter after "_" presses the button, together with Alt.
const std::string kCancelMnemonic = "_Cancel";
const std::string kUseCertificateMnemonic = "_Use This Certificate";
const std::string kContinueMnemonic = "C_ontinue";
const std::string kGetCertificateMnemonic = "_Get Certificate";
const std::string kDisconnectMnemonic = "_Disconnect";
const std::string kConnectMnemonic = "_Connect";
const std::string kAcceptMnemonic = "_Accept";

// Translators: keep the <b> and </b>.
const std::string kConnectionInformationCaption = "<b>Connection Information</b>";

const std::string kDayAmount = "%u Day";
// Translators: used for every number except 1, also for 2, 5 and 21. The same holds for hours and
// minutes.
const std::string kDaysAmount = "%u Days";
const std::string kHourAmount = "%u Hour";
const std::string kHoursAmount = "%u Hours";
const std::string kMinuteAmount = "%u Minute";
const std::string kMinutesAmount = "%u Minutes";

// Translators: keep the single blank.
const std::string kBlank = " ";

const std::string kBrowserTitle = "Velto Tunnelkeep Browser";
const std::string kUntrustedServerBlocked = "Untrusted Server Blocked!";
const std::string kContinueAnywayQuestion = "Would you like to continue anyway?";
// Translators: label of the button that leaves the untrusted server.
const std::string kKeepMeSafe = "Keep Me Safe";
const std::string kCertificateNameMismatch = "Certificate does not match the server name.";
const std::string kCertificateRevoked = "Certificate has been revoked.";

const std::string kConnect = "Connect";
const std::string kDisconnect = "Disconnect";
const std::string kReconnect = "Reconnect";
// Translators: state of the connection.
const std::string kPaused = "Paused";
const std::string kVpnConnected = "VPN Connected";

const std::string kConnectionInformation = "Connection Information";
const std::string kTransportInformation = "Transport Information";
// Translators: routes whose traffic goes through the tunnel.
const std::string kSecuredRoutesIpv4 = "Secured Routes (IPv4)";
const std::string kTunnelModeIpv4 = "Tunnel Mode (IPv4):";
const std::string kClientAddressIpv4 = "Client Address (IPv4)";

// Translators: kind of a network.
const std::string kWired = "Wired";
const std::string kMobileBroadbandNetwork = "Mobile Broadband Network";
const std::string kDynamicWep = "Dynamic WEP";
const std::string kWpa2PersonalAes = "WPA2 Personal AES";
const std::string k8021X = "802.1X";

// Translators: the banner is a text that a user has to accept before the connection.
const std::string kUserDeclinedBanner = "User declined banner.";
const std::string kUserCredentialsEntered = "User credentials entered.";
const std::string kUserCredentialsPromptCancelled = "User credentials prompt cancelled.";

const std::string kRequestNotPermittedInAutoConnect = "Request not permitted in auto-connect mode.";
const std::string kServiceUnavailable = "Service unavailable.";
const std::string kScriptExtensionRequired = "File extension must be .exe, .bat or .cmd.";
