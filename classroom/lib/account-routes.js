// Logging in and out. Handlers get {request, body, params, classroom, user, setCookie} and return the envelope.

import { Refusal, success } from './envelope.js';
import { hasTexts, requireSourceSystem, requireTexts } from './fields.js';

const LOGGED_IN = { infoMsgKeys: ['login.success'] };

function logIn(context, userId) {
  context.setCookie(context.classroom.logins.open(context.request, userId));
}

/** Logs in; a device that names itself also gets a token for later logins without a password. */
function logInDevice(context, userId) {
  const { body, classroom } = context;
  logIn(context, userId);
  const data = { userLoginId: userId };
  if (hasTexts(body, ['deviceId', 'deviceName'])) {
    data.deviceAccessToken = classroom.accounts.issueDeviceToken(userId, body.deviceId);
  }
  return success(data, LOGGED_IN);
}

function submitLogin(context) {
  const { body, classroom } = context;
  requireSourceSystem(body, 'login');
  const [userId] = requireTexts(body, 'login', ['userId']);
  if (body.deviceAccessToken !== undefined) {
    const [deviceId, token] = requireTexts(body, 'login', ['deviceId', 'deviceAccessToken']);
    classroom.accounts.checkDeviceToken(userId, deviceId, token);
    logIn(context, userId);
    return success({ userLoginId: userId }, LOGGED_IN);
  }
  const [password] = requireTexts(body, 'login', ['password']);
  classroom.accounts.checkPassword(userId, password);
  return logInDevice(context, userId);
}

// Providers compare the callback address with the registered one, character by character; the one
// registered with "facebook" ends in a slash, all others do not.
function checkCallbackUrl(provider, url) {
  const expected = provider === 'facebook' ? /^https?:\/\/[^/].*\/$/ : /^https?:\/\/[^/].*[^/]$/;
  if (!expected.test(url)) throw new Refusal(400, 'login.oauth.error.callbackUrl');
}

function oauthCallback(context) {
  const { body, params, classroom } = context;
  requireSourceSystem(body, 'login.oauth');
  const [code, callbackUrl] = requireTexts(body, 'login.oauth', ['code', 'callbackUrl']);
  checkCallbackUrl(params.provider, callbackUrl);
  const { userId, registration } = classroom.accounts.identify(params.provider, code);
  if (userId) return logInDevice(context, userId);
  return success(registration, { infoMsgKeys: ['login.oauth.success.registration'], registration });
}

// Answered with a message in place of a key: clients must understand either.
function submitRegistration(context) {
  const { body, classroom } = context;
  requireSourceSystem(body, 'register');
  const [token, provider, userId] = requireTexts(body, 'register', ['registrationToken', 'provider', 'userId']);
  classroom.accounts.register(token, provider, userId);
  logIn(context, userId);
  return success({ userLoginId: userId }, { infoMsgs: ['The registration was a success.'] });
}

// A question, not an action: whoever is not logged in gets an answer without a user, not a refusal.
function askUser({ user }) {
  return success(user === undefined ? {} : { userLoginId: user });
}

function logOut({ classroom, request, setCookie }) {
  setCookie(classroom.logins.close(request));
  return success({}, { infoMsgKeys: ['logout.success'] });
}

export const accountRoutes = [
  { path: '/tavisto', body: 'none', handle: () => success() },
  { path: '/tavisto/login/submit', handle: submitLogin },
  { path: '/tavisto/login/oauth/:provider/callback', handle: oauthCallback },
  { path: '/tavisto/register/oauth/submit', handle: submitRegistration },
  { path: '/tavisto/login/user', handle: askUser },
  { path: '/tavisto/login/keepSessionAlive', body: 'none', login: true, handle: () => success() },
  { path: '/tavisto/login/logout', handle: logOut },
];
