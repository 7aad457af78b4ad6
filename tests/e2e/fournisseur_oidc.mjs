// A real OpenID Connect provider (the npm package oidc-provider) for the end-to-end tests: one
// public client, the test space, with the authorization code flow and PKCE; its own sign-in
// pages; web_message answers for sign-in popups. Grants are given without asking.
//     node fournisseur_oidc.mjs <port on 127.0.0.2> <redirect_uri>
import http from "node:http";
import Provider from "oidc-provider";

const [port, retour] = process.argv.slice(2);
const fournisseur = new Provider(`http://127.0.0.2:${port}`, {
  clients: [{ client_id: "brindex", token_endpoint_auth_method: "none", redirect_uris: [retour] }],
  cookies: { keys: ["essai"] },
  features: { webMessageResponseMode: { enabled: true, ack: "individual-draft-01" } },
  async loadExistingGrant(ctx) {
    const grant = new ctx.oidc.provider.Grant({
      clientId: ctx.oidc.client.clientId, accountId: ctx.oidc.session.accountId });
    grant.addOIDCScope("openid");
    await grant.save();
    return grant;
  },
});
http.createServer(fournisseur.callback()).listen(Number(port), "127.0.0.2",
  () => console.log("PRET"));
