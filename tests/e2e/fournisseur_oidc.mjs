// A real OpenID Connect provider (oidc-provider, from npm): one public client, the test space,
// code flow with PKCE; its own sign-in pages; web_message answers for sign-in popups; grants
// given without asking.    node fournisseur_oidc.mjs <port on 127.0.0.2> <redirect_uri>
import http from "node:http";
import Provider from "oidc-provider";

const [port, retour] = process.argv.slice(2);
const fournisseur = new Provider(`http://127.0.0.2:${port}`, {
  clients: [{ client_id: "brindex", token_endpoint_auth_method: "none", redirect_uris: [retour] }],
  cookies: { keys: ["essai"] },
  features: { webMessageResponseMode: { enabled: true, ack: "individual-draft-01" } },
  async loadExistingGrant({ oidc }) {
    const grant = new oidc.provider.Grant({ clientId: oidc.client.clientId,
                                            accountId: oidc.session.accountId });
    grant.addOIDCScope("openid");
    return grant.save().then(() => grant);
  },
});
http.createServer(fournisseur.callback()).listen(Number(port), "127.0.0.2");
